#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// A run: a topmost execution, with everything below it.
struct Run {
  long long root = 0;  ///< Key of the topmost execution.
  std::string guid;
  std::string node;
  std::string startedAt;
};

/// The runs that started from a time on and before another, in the order of their recording.
std::vector<Run> RunsBetween(const Reader& store, const std::string& from, const std::string& before);

/// All of them, in the order of their recording.
std::vector<Run> AllRuns(const Reader& store);

/// The runs that a name may stand for: a guid, the first letters of one, "last" for the one recorded last, or a node.
std::vector<Run> RunsNamed(const Reader& store, const std::string& name);

/// The first letters of a run's guid, as many as name it alone.
std::string ShortGuid(const Reader& store, const std::string& guid);

/// A question for the executions of a run whose newest status is 4, running; goes on with the root's key.
inline constexpr const char* runningOfRun =
    "SELECT 1 FROM executions x WHERE 4 = (SELECT code FROM statuses WHERE execution_id = x.execution_id "
    "ORDER BY status_id DESC LIMIT 1) AND x.root_id = ";

/// Whether there is any such.
bool IsUnfinished(const Reader& store, const Run& run);

/// The time of the last status or event of a run.
std::string LastRecorded(const Reader& store, const Run& run);

}  // namespace Velora::Store
