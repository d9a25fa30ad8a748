#include "asking/DurationArgument.h"

#include "asking/UsageError.h"

#include <regex>

namespace Velora::Ts {

std::chrono::seconds DurationArgument(const std::string& option, const std::string& text) {
  using namespace std::chrono;
  static const std::regex form("([0-9]{1,6})([dhms])");
  std::smatch part;
  if (!std::regex_match(text, part, form)) {
    throw UsageError(option + " '" + text + "': expected a duration, " VELORA_DURATION_FORMS);
  }
  const char unit = *part[2].first;
  const seconds one = unit == 'd' ? days(1) : unit == 'h' ? hours(1) : unit == 'm' ? minutes(1) : seconds(1);
  return std::stoi(part[1]) * one;
}

}  // namespace Velora::Ts
