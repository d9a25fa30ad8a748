#pragma once

#include "store/comparing/Comparison.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace Velora::Store {

/// The differences between two runs, with those of one kind and name together, so that the memory does not grow with
/// their number.
class Summary {
 public:
  /// What differs, or is in one run alone.
  struct Key {
    Compared::Kind kind;
    bool isFirstAlone = false, isSecondAlone = false;  ///< Of executions and events.
    std::string name;       ///< Of the event; of versions, the first one; of durations, the activity.
    std::string parameter;  ///< Of versions, the second one.
    std::size_t occurrence = 1;

    bool operator<(const Key& other) const;
  };
  struct Group {
    long long compared = 0, differ = 0;
    bool constant = true;             ///< Whether all that differ have the same two values.
    std::vector<Compared> first;      ///< The first ones that differ, at most `mostShown`.
    std::optional<Compared> largest;  ///< The one with the largest difference.
    std::optional<Compared> earliest;

    /// Whether it differs nearly everywhere, with other values each time, as names of files, times and measured
    /// numbers do. It says nothing about where two runs part.
    bool IsAlwaysDifferent() const { return compared >= 3 && differ * 10 >= compared * 9 && !constant; }
  };
  static constexpr std::size_t mostShown = 5;

  /// @return the group to which it belongs, which stays where it is.
  const Group& Add(const Compared& compared);

  const std::map<Key, Group>& Groups() const { return groups; }
  /// Whether nothing differs. Durations do not count.
  bool IsEmpty(bool durationsCount) const;
  /// Where the runs first part, by the clock of the first one: an event, a parameter or an execution, but no parameter
  /// that is always different; else a status; else such a parameter.
  const Compared* Parting() const;

 private:
  static Key KeyOf(const Compared& compared);

  std::map<Key, Group> groups;
};

}  // namespace Velora::Store
