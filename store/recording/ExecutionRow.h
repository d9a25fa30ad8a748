#pragma once

#include <optional>
#include <string>

namespace Velora::Store {

/// The row of a new execution and of its first status. Texts are in their stored form.
struct ExecutionRow {
  std::string guid;
  std::optional<long long> parent;
  std::optional<long long> root;  ///< Nothing for an execution that is its own root.
  long long session = 0;
  std::optional<long long> version;
  std::string node;
  std::string description;
  int kind = 0;
  std::string startedAt;
  int code = 0;
};

/// The row of a status of an execution that exists.
struct StatusRow {
  long long execution = 0;
  std::string guid;  ///< Of the execution.
  long long session = 0;
  int code = 0;
  std::string at;
};

}  // namespace Velora::Store
