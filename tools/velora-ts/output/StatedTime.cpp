#include "output/StatedTime.h"

#include <VeloraLogFile/TimeForm.h>

#include <string>
#include <vector>

namespace Velora::Ts {

namespace {

std::vector<LogFile::TimeForm> AllForms() {
  std::vector<LogFile::TimeForm> forms;
  for (const char* day : {"%Y-%m-%d", "%Y/%m/%d", "%Y-%b-%d", "%d-%b-%y", "%d-%b-%Y", "%d/%b/%Y", "%d %b %Y"}) {
    for (const char* between : {" ", "T", ":"}) {
      for (const char* clock : {"%H:%M:%S%z", "%H:%M:%S %z", "%H:%M%z"}) {
        forms.emplace_back(std::string(day) + between + clock);
      }
    }
  }
  return forms;
}

}  // namespace

std::optional<long long> StatedTime(std::string_view text) {
  static const std::vector<LogFile::TimeForm> forms = AllForms();
  for (const LogFile::TimeForm& form : forms) {
    std::string_view rest = text;
    const std::optional<long long> time = form.Read(rest);
    if (time && rest.empty()) {
      return time;
    }
  }
  return std::nullopt;
}

}  // namespace Velora::Ts
