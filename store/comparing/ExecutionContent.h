#pragma once

#include "store/comparing/EventPairs.h"
#include "store/comparing/RunTree.h"
#include "store/reading/Rows.h"

#include <unordered_map>

namespace Velora::Store {

/// What tells executions of one activity and node apart: status, number of children, and the first parameters.
class ExecutionContent {
 public:
  ExecutionContent(const Reader& store, const RunTree& tree);

  /// The content of an execution, which is valid until the next call.
  const Parameters& Of(std::size_t place);

 private:
  Parameters Read(std::size_t place);
  bool AppendParameters(Parameters& content, std::size_t place);

  const RunTree& tree;
  Rows rows;
  std::unordered_map<std::size_t, Parameters> known;
};

}  // namespace Velora::Store
