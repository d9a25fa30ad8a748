#pragma once

#include "proving/Evidence.h"
#include "store/reading/KnownStores.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
class StoredTree;
}  // namespace Velora::Store

namespace Velora::Ts {

/// The signatures and time stamps of the seals of one chain, as they are stored.
class EvidenceRows {
 public:
  /// @param origin the store that sealed.
  EvidenceRows(const Store::Reader& store, const Store::KnownStore& origin);

  /// Whether there is any for a seal.
  bool IsOf(long long seal) const { return signatures.contains(seal) || stamps.contains(seal); }
  /// The newest seal up to one that has a signature; 0 for none.
  long long NewestSigned(long long upTo) const;
  /// What there is of a seal.
  /// @param size,root of the tree after the seal.
  Evidence Of(long long seal, long long size, const Store::Hash& root) const;
  /// The numbers of seals of which there is any, but which are not from 1 to the newest one.
  std::set<long long> OfNoSeal(long long newest) const;

 private:
  const std::string origin;
  std::map<long long, std::vector<Signature>> signatures;
  std::map<long long, std::vector<Stamp>> stamps;
};

/// What there is of a seal whose tree is stored; nothing if its hashes are not.
/// @throws Error when hashes are missing.
std::optional<Evidence> EvidenceOf(const EvidenceRows& rows, Store::StoredTree& tree, long long seal);

}  // namespace Velora::Ts
