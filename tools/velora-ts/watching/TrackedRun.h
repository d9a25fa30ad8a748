#pragma once

#include "store/reading/ExecutionPath.h"
#include "store/reading/Runs.h"
#include "watching/NewRows.h"
#include "watching/Now.h"
#include "watching/SeenTime.h"

#include <chrono>
#include <deque>
#include <memory>
#include <utility>

namespace Velora::Ts {

using Clock = std::chrono::steady_clock;

/// A run that is shown, kept up with what is recorded.
class TrackedRun {
 public:
  /// Reads it. The time that this takes grows with the run.
  /// @param lastSeen of the times of its records; it outlives this.
  TrackedRun(const Store::Reader& store, long long root, const Store::KnownState& state, SeenTime& lastSeen);

  /// Takes what was recorded of it since.
  void Take(const Store::Reader& store, const NewOfRun& rows);
  /// Takes whether its host lives. When that has changed, it counts anew, because a row of a server can become visible
  /// after later ones.
  void Take(const Store::Reader& store, const Store::KnownState& state);
  /// What to show of it. Runs that did not change are the same object.
  std::shared_ptr<const RunNow> Shown();

 private:
  void Count(const Store::Reader& store);
  void ReadLastEvent(const Store::Reader& store);
  void ReadPath(const Store::Reader& store);
  StepNow Step(const Store::Reader& store, const Store::PathStep& step, std::size_t depth) const;
  void Mark();
  void Rate();

  const Store::Run run;
  SeenTime& lastSeen;
  RunNow now;
  long long lastEvent = 0;  // its key; 0 for none
  const Clock::time_point since = Clock::now();
  Clock::time_point rated{};
  std::deque<std::pair<Clock::time_point, long long>> lately;  // when how many events were found
  std::shared_ptr<const RunNow> shown;
};

}  // namespace Velora::Ts
