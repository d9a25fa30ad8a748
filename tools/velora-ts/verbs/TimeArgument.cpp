#include "verbs/TimeArgument.h"

#include "store/values/StoredTime.h"
#include "verbs/Verb.h"

#include <string_view>

namespace Velora::Ts {

using namespace Store;

namespace {

bool IsBelow(std::string_view limit, std::string_view time, std::size_t place) {
  return time.size() <= place || time.substr(place, 2) < limit;
}

// Whether a beginning of a stored time ends with a whole part, and no part of the day is too large.
bool IsTime(std::string_view text) {
  const std::size_t size = text.size();
  const bool whole = size == 10 || size == 13 || size == 16 || size == 19 || size > 20;
  return whole && !text.ends_with('Z') && Microseconds(text) && IsBelow("24", text, 11) && IsBelow("60", text, 14) &&
         IsBelow("60", text, 17);
}

}  // namespace

std::string TimeArgument(const std::string& text) {
  std::string time = text.substr(0, text.size() - (text.ends_with('Z') ? 1 : 0));
  if (!IsTime(time)) {
    throw UsageError("time '" + text + "': expected UTC as 2026-11-24 or 2026-11-24T21:55:03");
  }
  return time;
}

}  // namespace Velora::Ts
