#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/Rows.h"

#include <array>
#include <map>

namespace Velora::Ts {

/// Finds the instruments of sessions.
class InstrumentFinder {
 public:
  explicit InstrumentFinder(const Store::Reader& store);

  /// The instrument of a TrendSource.
  long long Of(long long session);

 private:
  Store::Rows first;
  std::map<long long, long long> known;
};

/// Finds the activity versions of executions in a file. It remembers a limited number of them.
class VersionFinder {
 public:
  explicit VersionFinder(const Store::Reader& store);

  /// The versions of a TrendSource. @param execution 0 for none.
  const std::vector<long long>& Of(long long execution);

 private:
  std::vector<long long> Ask(long long execution);

  struct Execution {
    long long key = -1;
    std::vector<long long> versions;
  };
  Store::Rows one;
  std::array<Execution, 1024> known;  // by the last digits of their keys
};

}  // namespace Velora::Ts
