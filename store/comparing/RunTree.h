#pragma once

#include "store/reading/Runs.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Velora::Store {

/// An execution of a run, with little enough that all of a run can be in memory.
struct TreeNode {
  long long key = 0;                   ///< Of its row.
  std::size_t parent = 0;              ///< Its place in the tree; the root is its own parent.
  std::size_t activity = 0;            ///< Place of its activity version among the activities of the tree.
  std::size_t ordinal = 1;             ///< Which one it is of this activity and node among its siblings.
  std::string node;                    ///< As stored.
  std::optional<long long> startedAt;  ///< Microseconds since 1970.
  std::optional<long long> status;     ///< The newest one.
  std::optional<long long> statusAt;
};

/// A time, moved from the clock of one execution to that of its counterpart: as long after the start of the one as it
/// was after the start of the other.
std::optional<long long> InTimeOf(const TreeNode& execution, const TreeNode& counterpart, std::optional<long long> at);

/// An activity version. Its texts are as stored, and empty for an execution without a version.
struct TreeActivity {
  std::string name, version;
};

/// The executions of a run, in the order of their keys.
class RunTree {
 public:
  RunTree(const Reader& store, const Run& run);

  std::size_t Size() const { return nodes.size(); }
  const TreeNode& At(std::size_t place) const { return nodes[place]; }
  const TreeActivity& ActivityOf(std::size_t place) const { return activities[nodes[place].activity]; }
  /// The places of the executions below one, in the order of their keys.
  std::span<const std::size_t> ChildrenOf(std::size_t place) const;
  /// The number of executions below one, at all levels.
  std::size_t CountBelow(std::size_t place) const;
  /// The place of the root.
  std::size_t Root() const { return root; }

 private:
  void Read(const Reader& store, const Run& run);
  void FindParents(const std::vector<long long>& parents);
  void CountOrdinals();

  std::vector<TreeNode> nodes;
  std::vector<TreeActivity> activities;
  std::vector<std::size_t> children;    // by parent
  std::vector<std::size_t> childrenOf;  // where those of each execution begin in `children`
  std::size_t root = 0;
};

}  // namespace Velora::Store
