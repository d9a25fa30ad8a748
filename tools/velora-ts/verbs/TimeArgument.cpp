#include "verbs/TimeArgument.h"

#include "store/values/StoredTime.h"
#include "verbs/Verb.h"

#include <regex>

namespace Velora::Ts {

using namespace Store;

std::string TimeArgument(const std::string& text) {
  static const std::regex form(R"((\d{4}-\d\d-\d\d(T([01]\d|2[0-3])(:[0-5]\d(:[0-5]\d(\.\d{1,6})?)?)?)?)Z?)");
  std::smatch parts;
  if (!std::regex_match(text, parts, form) || !Microseconds(parts[1].str())) {
    throw UsageError("time '" + text + "': expected UTC as 2026-11-24 or 2026-11-24T21:55:03");
  }
  return parts[1];
}

}  // namespace Velora::Ts
