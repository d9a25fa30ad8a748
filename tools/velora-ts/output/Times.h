#pragma once

#include "store/values/StoredTime.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// How far local clocks are ahead of UTC at a time.
std::chrono::seconds LocalOffset(Store::Time time);

/// A stored time as local time with its offset from UTC. A text that is not a time is only made printable.
/// @param fractions whether to show milliseconds.
std::string LocalTime(std::string_view stored, bool fractions);

/// The parts of such a time: "2026-11-24", "21:55:03.250" and "+01:00".
struct TimeParts {
  std::string date, ofDay, offset;
};
/// The parts of what LocalTime() returned; nothing if it was not given a time.
std::optional<TimeParts> PartsOf(std::string_view localTime);

/// The time of day of a later time, followed by the number of days after the earlier one unless it is the same day:
/// "05:24:43 +1d". Nothing if clocks were set back in between or had another offset.
std::optional<std::string> LaterInShort(const TimeParts& earlier, const TimeParts& later);

/// What stands above times that are shown without date and offset.
class DayLines {
 public:
  /// Date and offset of a time, if they are others than those of the time before; else an empty text.
  std::string Above(const TimeParts& time);

 private:
  std::string day;
};

/// A duration as hours, minutes and seconds, for example "0:41:10".
/// @param fractions whether to show milliseconds.
std::string Duration(double seconds, bool fractions);

}  // namespace Velora::Ts
