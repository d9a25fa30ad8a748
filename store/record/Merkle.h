#pragma once

#include "store/record/Sha256.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Store {

// A Merkle tree as RFC 6962 defines it (section 2.1), with SHA-256: from its root it can be shown that a leaf is in the
// tree, by as many hashes as the tree has levels.

/// 32 bytes.
using Hash = std::string;
inline constexpr std::size_t hashBytes = 32;

/// Computes the hashes of a tree.
class TreeHasher {
 public:
  Hash OfLeaf(std::string_view leaf);
  Hash OfNode(std::string_view left, std::string_view right);
  /// The root of a tree without leaves.
  Hash OfNothing() { return sha.FinishBytes(); }

 private:
  Sha256 sha;
};

/// Gives the root of a part of a tree.
/// @param first the number of its first leaf, counted from 0.
/// @param level the part has 2^level leaves.
using PartRoot = std::function<Hash(long long first, int level)>;

/// A tree to which leaves are added. Keeps the roots of its complete subtrees only, one for each level at most.
class GrowingTree {
 public:
  GrowingTree() = default;
  /// The tree of the first leaves of another one.
  GrowingTree(long long size, const PartRoot& rootOf);

  void Add(const Hash& leaf);
  long long Size() const { return size; }
  /// The root of the tree as it is now.
  Hash Root();
  /// The root of the last 2^level leaves, of which the last was just added.
  /// @param level for which the size is a multiple of 2^level.
  const Hash& Last(int level) const;

 private:
  TreeHasher hasher;
  long long size = 0;
  std::vector<Hash> subtrees;  ///< The largest first, without those that others contain.
  std::vector<Hash> last;      ///< By level, of the leaf that was added last.
};

/// The hashes that lead from a leaf to the root (RFC 6962, 2.1.1), the one beside the leaf first.
/// @param leaf the number of the leaf, counted from 0, below `size`.
std::vector<Hash> PathOf(long long leaf, long long size, const PartRoot& rootOf);

/// The root to which a path leads; nothing, if no leaf of this number in a tree of this size has such a path.
std::optional<Hash> RootBy(const std::vector<Hash>& path, const Hash& leafHash, long long leaf, long long size);

/// The root of the first leaves of a tree.
Hash RootOf(long long size, const PartRoot& rootOf);

}  // namespace Velora::Store
