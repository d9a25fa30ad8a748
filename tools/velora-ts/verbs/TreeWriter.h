#pragma once

#include "store/record/StoredTree.h"

#include <string>

namespace Velora::Store {
class Connection;
class Reader;
}  // namespace Velora::Store

namespace Velora::Ts {

/// Adds the leaves of seals to the tree of a store, and the rows that keep their hashes.
class TreeWriter {
 public:
  /// @param seals how many seals the store has.
  /// @throws Error when the stored hashes cannot be those of its seals.
  TreeWriter(const Store::Reader& store, long long seals);

  /// The newest seal whose leaves are in the tree.
  long long Sealed() const { return sealed; }
  /// How many leaves the tree has.
  long long Size() const { return tree.Size(); }
  Store::Hash Root() { return tree.Root(); }

  /// Adds the leaves of the next seal, within a transaction that holds the seals.
  /// @param leaves the hashes of the lines that the seal covers, and of its own line, joined.
  void Add(Store::Connection& sql, long long seal, const std::string& leaves);

 private:
  Store::StoredTree stored;
  Store::GrowingTree tree;
  long long sealed = 0;
};

}  // namespace Velora::Ts
