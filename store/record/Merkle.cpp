#include "store/record/Merkle.h"

#include <bit>

namespace Velora::Store {

namespace {

constexpr std::string_view leafMark("\0", 1), nodeMark("\1", 1);

/// The number of leaves on the left of a tree: the largest power of two below its size.
long long LeftOf(long long size) {
  return static_cast<long long>(std::bit_floor(static_cast<unsigned long long>(size - 1)));
}

int LevelOf(long long leaves) { return std::countr_zero(static_cast<unsigned long long>(leaves)); }

/// The root of any part that begins at a leaf where a tree of its size is complete on its left.
Hash RootBetween(long long first, long long size, const PartRoot& rootOf, TreeHasher& hasher) {
  if (std::has_single_bit(static_cast<unsigned long long>(size))) {
    return rootOf(first, LevelOf(size));
  }
  const long long left = LeftOf(size);
  return hasher.OfNode(rootOf(first, LevelOf(left)), RootBetween(first + left, size - left, rootOf, hasher));
}

}  // namespace

Hash TreeHasher::OfLeaf(std::string_view leaf) {
  sha.Add(leafMark);
  sha.Add(leaf);
  return sha.FinishBytes();
}

Hash TreeHasher::OfNode(std::string_view left, std::string_view right) {
  sha.Add(nodeMark);
  sha.Add(left);
  sha.Add(right);
  return sha.FinishBytes();
}

GrowingTree::GrowingTree(long long size, const PartRoot& rootOf) : size(size) {
  for (long long first = 0; first < size;) {
    const long long leaves = static_cast<long long>(std::bit_floor(static_cast<unsigned long long>(size - first)));
    subtrees.push_back(rootOf(first, LevelOf(leaves)));
    first += leaves;
  }
}

void GrowingTree::Add(const Hash& leaf) {
  last.assign(1, leaf);
  for (long long rest = size; rest % 2 == 1; rest /= 2) {
    last.push_back(hasher.OfNode(subtrees.back(), last.back()));
    subtrees.pop_back();
  }
  subtrees.push_back(last.back());
  ++size;
}

Hash GrowingTree::Root() {
  if (subtrees.empty()) {
    return hasher.OfNothing();
  }
  Hash root = subtrees.back();
  for (auto left = subtrees.rbegin() + 1; left != subtrees.rend(); ++left) {
    root = hasher.OfNode(*left, root);
  }
  return root;
}

const Hash& GrowingTree::Last(int level) const { return last.at(static_cast<std::size_t>(level)); }

std::vector<Hash> PathOf(long long leaf, long long size, const PartRoot& rootOf) {
  TreeHasher hasher;
  std::vector<Hash> fromTheRoot;
  for (long long first = 0; size > 1;) {
    const long long left = LeftOf(size);
    if (leaf - first < left) {
      fromTheRoot.push_back(RootBetween(first + left, size - left, rootOf, hasher));
      size = left;
    } else {
      fromTheRoot.push_back(rootOf(first, LevelOf(left)));
      first += left;
      size -= left;
    }
  }
  return {fromTheRoot.rbegin(), fromTheRoot.rend()};
}

std::optional<Hash> RootBy(const std::vector<Hash>& path, const Hash& leafHash, long long leaf, long long size) {
  if (leaf < 0 || leaf >= size) {
    return std::nullopt;
  }
  TreeHasher hasher;
  Hash root = leafHash;
  long long last = size - 1;  // the number of the last node of the level
  for (const Hash& beside : path) {
    if (last == 0) {
      return std::nullopt;
    }
    if (leaf % 2 == 1 || leaf == last) {
      root = hasher.OfNode(beside, root);
      for (; leaf % 2 == 0 && leaf != 0; leaf /= 2) {  // nodes without another beside them rise
        last /= 2;
      }
    } else {
      root = hasher.OfNode(root, beside);
    }
    leaf /= 2;
    last /= 2;
  }
  return last == 0 ? std::optional(root) : std::nullopt;
}

Hash RootOf(long long size, const PartRoot& rootOf) {
  TreeHasher hasher;
  return size == 0 ? hasher.OfNothing() : RootBetween(0, size, rootOf, hasher);
}

}  // namespace Velora::Store
