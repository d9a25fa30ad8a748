#pragma once

#include "store/reading/ExecutionPath.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;
struct Run;

/// Where a run is, or stopped: an execution that is running, while nothing below it is.
struct Stop {
  ExecutionPath path;             ///< From the run to that execution.
  std::string startedAt;          ///< When that execution started.
  std::vector<long long> events;  ///< The keys of the newest events of the executions on the path, the newest first.
};

/// How many events of a stop are listed.
inline constexpr std::size_t lastEvents = 5;

/// The stops of a run, as many as `most`, the one with the newest event first. A run that is finished has none.
/// @param all becomes how many there are.
std::vector<Stop> StopsOf(const Reader& store, const Run& run, std::size_t most, std::size_t& all);

}  // namespace Velora::Store
