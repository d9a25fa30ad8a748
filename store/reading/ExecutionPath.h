#pragma once

#include "store/reading/Rows.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Velora::Store {

/// An execution on the way from the root of its tree down to another one. Its texts are as stored.
struct PathStep {
  long long key = 0;  ///< Of its row.
  std::optional<long long> parent;
  std::string guid, node;
  std::string activity, version;  ///< Of its activity version; empty if it has none.
  std::string activityGroup;      ///< The name of the activity to which that version belongs.
};

/// From the root of a tree down to one execution: session, grid, square, hole. It is empty outside every run.
using ExecutionPath = std::vector<PathStep>;

/// Finds the paths of executions. It keeps what it found lately, in limited memory, because events one after the other
/// mostly belong to neighbours.
class ExecutionPaths {
 public:
  explicit ExecutionPaths(const Reader& store);

  /// The path of an execution, which is valid until the next call.
  /// @param key the key of the execution.
  const ExecutionPath& Of(std::optional<long long> key);

 private:
  /// The execution with this key; null if there is none.
  const PathStep* Find(long long key);

  Rows execution;
  std::unordered_map<long long, PathStep> known;
  std::optional<long long> current;  // the execution whose path is `path`
  ExecutionPath path;
};

/// The nodes of a path, readable and joined: "session > grid 3 > square 5".
std::string NodesInWords(const ExecutionPath& path);

}  // namespace Velora::Store
