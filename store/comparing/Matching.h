#pragma once

#include "store/comparing/RunTree.h"
#include "store/comparing/Value.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace Velora::Store {

/// Which executions of two runs belong together. The roots do, whatever their names. Below two that do, siblings of the
/// same activity and node do: the n-th of a name with the n-th, in the order of recording, unless one side has more of
/// them (Align()). If no node of an activity is on both sides, its nodes are compared without the numbers that are on
/// one side only, such as a date; else without any number; else only the activity counts.
struct Matching {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  std::vector<std::size_t> ofFirst, ofSecond;  ///< For each execution its counterpart's place in the other tree.
  std::vector<bool> moved;  ///< For each of the first run, whether its siblings come in another order.
};

/// How different two executions of one activity and node are, by their content: the places in both trees.
using ExecutionDistance = std::function<double(std::size_t first, std::size_t second)>;

Matching MatchExecutions(const RunTree& first, const RunTree& second, const ExecutionDistance& distance);

}  // namespace Velora::Store
