#pragma once

#include <string>
#include <vector>

class Store;

/// A run: a topmost execution, with everything below it.
struct Run {
  long long root = 0;  ///< Key of the topmost execution.
  std::string guid;
  std::string node;
  std::string startedAt;
};

/// A run in words that name it.
std::string InWords(const Run& run);

/// The runs that started from a time on and before another, in the order of their recording.
std::vector<Run> RunsBetween(const Store& store, const std::string& from, const std::string& before);

/// All of them, in the order of their recording.
std::vector<Run> AllRuns(const Store& store);

/// The runs that a name may stand for: a guid, the first letters of one, "last", or a node.
std::vector<Run> RunsNamed(const Store& store, const std::string& name);

/// Whether any execution of a run has 4, running, for its newest status.
bool IsUnfinished(const Store& store, const Run& run);
