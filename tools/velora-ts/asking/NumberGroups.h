#pragma once

#include "store/asking/EventWindow.h"
#include "store/asking/Numbers.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// By what the numbers of a parameter are put into groups. Days and months are local.
enum class GroupBy { Nothing, Run, Day, Month, Instrument, Activity };

/// The numbers of a group.
struct NumberGroup {
  Store::Numbers numbers;
  std::deque<long long> times;  ///< Of the numbers, in microseconds, while they are in the order of reading; if wanted.
  std::string firstAt, lastAt;  ///< The stored times of the first and the last number.
};

/// The numbers that a parameter had in a window of events, in groups.
class NumberGroups {
 public:
  /// Reads them.
  /// @param parameter the name of the parameter, as stored.
  /// @param withTimes whether the times of the numbers are wanted.
  NumberGroups(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter, GroupBy by,
               bool withTimes = false);

  /// The groups by their names, in order: an empty one; the stored time and the key of a run; a day, a month, a stored
  /// instrument, an activity with its version.
  std::map<std::string, NumberGroup, std::less<>> groups;
  std::size_t count = 0;   ///< Of the numbers.
  std::size_t others = 0;  ///< Values that are no finite numbers.
};

}  // namespace Velora::Ts
