#pragma once

#include "store/reading/Rows.h"
#include "store/record/TreeRows.h"
#include "store/schema/StoreNumbers.h"

#include <optional>
#include <string>

namespace Velora::Store {

class Reader;

// The tree over all that a chain of seals covers (docs/integrity.md). Its leaves are the lines that a seal hashes, then
// the line of the seal itself, seal after seal. The store keeps the hashes of the leaves, and the root of each 256 that
// follow one another, so that a proof reads few rows. The keys of the rows say where in the tree they are.

/// The hashes of the leaves that a seal added.
struct SealLeaves {
  long long first = 0;  ///< The number of the first leaf, counted from 0.
  std::string hashes;   ///< 32 bytes each; the last is that of the seal itself.

  long long End() const { return first + static_cast<long long>(hashes.size() / hashBytes); }
};

/// Reads the tree of one chain. A store of an earlier version has none.
class StoredTree {
 public:
  /// @param origin the number of the store that sealed.
  explicit StoredTree(const Reader& store, long long origin = thisStore);

  /// The rows that a tree gets while it grows.
  /// @param from how many leaves it has before, and @param to behind.
  TreeRows RowsBetween(long long from, long long to);
  /// How many rows there are that a tree of so many leaves does not have.
  long long RowsBehind(long long size);
  /// The leaves of a seal; nothing if there are none, or if they are not whole.
  std::optional<SealLeaves> LeavesOf(long long seal);
  /// The same, for a seal that is known to begin behind so many leaves.
  std::optional<SealLeaves> LeavesOf(long long seal, long long behind);
  /// The number of the newest seal whose leaves are stored; 0 for none.
  long long NewestSeal();
  /// The root of a part of the tree, as PathOf() asks for it.
  /// @throws Error when hashes are missing.
  Hash RootOfPart(long long first, int level);

 private:
  long long SizeBefore(long long seal);
  std::string Leaves(long long first, long long count);
  std::string Parts(long long first, long long count);

  TreeHasher hasher;
  const long long shift, last;  // the keys of the rows of the chain are behind the first, up to the second
  std::optional<Rows> leaves, parts, newest, rowsBehind;
};

}  // namespace Velora::Store
