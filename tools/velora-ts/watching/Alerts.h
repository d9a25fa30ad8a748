#pragma once

#include "watching/Alert.h"

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace Velora::Ts {

/// Makes alerts of what is so at each look: one when a condition begins, and one when it ends. A condition begins when
/// it has held for the grace time, without a look at which it did not, and ends when it has not held for that time. So
/// what flickers, as a host that is started again does, gives one alert at most.
class Alerts {
 public:
  using Clock = std::chrono::steady_clock;

  enum class AtStart { Tell, OnlyNew };
  /// @param atStart OnlyNew for nothing about a condition that holds when its store is first read, until it has ended.
  Alerts(std::chrono::seconds grace, AtStart atStart) : grace(grace), atStart(atStart) {}

  /// What has begun and what has ended since the look before.
  /// @param conditions all that are looked for, each once. One that is left out does not hold; of a store that cannot
  /// be read, none is known but that.
  std::vector<Alert> Look(const std::vector<AlertCondition>& conditions, Clock::time_point now);

 private:
  struct Known {
    bool begun = false;                          // as far as it was told
    bool isMuted = false;                        // it held at the start
    std::optional<Clock::time_point> otherwise;  // since when the opposite is so
    AlertCondition last;                         // with the time of the beginning
  };
  void Take(const AlertCondition& condition, Clock::time_point now, std::vector<Alert>& alerts);
  void Change(Known& one, bool holds, Clock::time_point now, std::vector<Alert>& alerts);
  bool IsOfTheStart(const AlertSubject& subject) const;

  const std::chrono::seconds grace;
  const AtStart atStart;
  std::map<AlertSubject, Known> known;
  std::set<int> read, lookedAt;  // the stores that could be read, and could not
};

}  // namespace Velora::Ts
