#pragma once

#include "store/record/Merkle.h"

#include <string>
#include <vector>

namespace Velora::Store {

/// How many leaves the parts of a tree have whose roots a store keeps.
inline constexpr int partLevel = 8;
inline constexpr long long leavesOfPart = 1LL << partLevel;

/// A row of the table tree_leaves: the hashes of at most 256 leaves of a seal, which follow one another.
struct LeafRow {
  long long last = 0;  ///< The number of the last one, counted from 1.
  long long seal = 0;
  std::string hashes;  ///< In Base64.

  bool operator==(const LeafRow&) const = default;
};

/// A row of the table tree_parts: the root of 256 leaves.
struct PartRow {
  long long number = 0;  ///< Counted from 1.
  std::string hash;      ///< In Base64.

  bool operator==(const PartRow&) const = default;
};

/// Rows that keep a part of a tree.
struct TreeRows {
  std::vector<LeafRow> leaves;
  std::vector<PartRow> parts;

  bool operator==(const TreeRows&) const = default;
};

/// Adds the leaves of one seal to a tree.
/// @param leaves their hashes, joined.
/// @return the rows that keep them, and the parts of the tree that became complete.
TreeRows AddLeaves(GrowingTree& tree, long long seal, const std::string& leaves);

}  // namespace Velora::Store
