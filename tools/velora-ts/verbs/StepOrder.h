#pragma once

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

#include <string>
#include <vector>

namespace Velora::Ts {

/// The order of executions by the time that a parameter states: hosts that record a file say so when each step was
/// done.
class StepOrder {
 public:
  /// @param name of the parameter, as stored. An empty one leaves everything in the order of recording.
  StepOrder(const Store::Reader& store, const std::string& name);

  /// @throws UsageError if no event of a run states a time so.
  void ExpectTimesIn(const Store::Run& run);
  /// Puts keys of executions in order, by the last value of each. Those without a time stay behind the others.
  void Sort(std::vector<long long>& keys);

 private:
  std::string name;
  Store::Rows ofRun, ofExecution;
};

}  // namespace Velora::Ts
