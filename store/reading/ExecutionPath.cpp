#include "store/reading/ExecutionPath.h"

#include "store/values/RecordedText.h"

#include <algorithm>

namespace Velora::Store {

namespace {

constexpr std::size_t mostKnown = 10'000;

}  // namespace

ExecutionPaths::ExecutionPaths(const Reader& store)
    : execution(store,
                "SELECT e.execution_id, e.parent_id, e.guid, e.node, v.name, v.version, a.name FROM executions e "
                "LEFT JOIN activity_versions v ON v.version_id = e.version_id "
                "LEFT JOIN activities a ON a.activity_id = v.activity_id WHERE e.execution_id = ?1") {}

const ExecutionPath& ExecutionPaths::Of(std::optional<long long> key) {
  if (key == current) {
    return path;
  }
  current = key;
  path.clear();
  if (known.size() > mostKnown) {
    known.clear();
  }
  // A parent has a lower key. A path that another program bent into a circle ends there.
  const PathStep* step = key ? Find(*key) : nullptr;
  while (step != nullptr) {
    path.push_back(*step);
    step = step->parent && *step->parent < step->key ? Find(*step->parent) : nullptr;
  }
  std::reverse(path.begin(), path.end());
  return path;
}

const PathStep* ExecutionPaths::Find(long long key) {
  const auto found = known.find(key);
  if (found != known.end()) {
    return &found->second;
  }
  if (!execution.Ask(key).Next()) {
    return nullptr;
  }
  const auto text = [this](int column) { return std::string(execution.Text(column)); };
  return &known
              .emplace(key, PathStep{key, execution.IsNull(1) ? std::nullopt : std::optional(execution.Integer(1)),
                                     text(2), text(3), text(4), text(5), text(6)})
              .first->second;
}

std::string NodesInWords(const ExecutionPath& path) {
  std::string words;
  for (const PathStep& step : path) {
    words += words.empty() ? "" : " > ";
    AppendReadable(words, step.node);
  }
  return words;
}

}  // namespace Velora::Store
