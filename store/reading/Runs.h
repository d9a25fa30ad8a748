#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// A run: an execution without a parent, with everything below it. Its texts are as stored.
struct Run {
  long long root = 0;  ///< Key of the execution without a parent, the root.
  std::string guid;
  std::string node;
  std::string startedAt;
};

/// The runs that started at or after one time and before another, in the order of their recording.
std::vector<Run> RunsBetween(const Reader& store, const std::string& from, const std::string& before);

/// All runs, in the order of their recording.
std::vector<Run> AllRuns(const Reader& store);

/// The runs that match a name: a guid, the first characters of one, "last" for the run recorded last, or a node.
std::vector<Run> RunsNamed(const Reader& store, const std::string& name);

/// The first characters of a run's guid, as many as no other run begins with.
std::string ShortGuid(const Reader& store, const std::string& guid);

/// A query for the executions of a run whose newest status is 4, running. The caller appends the key of the root.
inline constexpr const char* runningOfRun =
    "SELECT 1 FROM executions x WHERE 4 = (SELECT code FROM statuses WHERE execution_id = x.execution_id "
    "ORDER BY status_id DESC LIMIT 1) AND x.root_id = ";

/// Whether the newest status of any execution of a run is 4, running.
bool IsUnfinished(const Reader& store, const Run& run);

/// The time of the last status or event of a run.
std::string LastRecorded(const Reader& store, const Run& run);

}  // namespace Velora::Store
