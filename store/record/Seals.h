#pragma once

#include "store/reading/Runs.h"
#include "store/record/Records.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

// The seals of a store: docs/integrity.md.

/// The row of a seal.
struct Seal {
  long long number = 0;
  std::string run;  ///< The guid of the run; empty for the records that belong to no run.
  std::string upTo;
  std::string counts;
  std::string contentHash;
  std::string previousHash;
  std::string hash;
  std::string ownHash;  ///< The hash computed from the row, which must be equal to `hash`.

  bool operator==(const Seal&) const = default;
};

/// The previous hash of the first seal.
inline const std::string noHash(64, '0');

/// The form of numbers in a seal.
std::string ToText(const Numbers& numbers);
/// The numbers of that form; nothing for another text.
std::optional<Numbers> FromText(const std::string& text);

/// All seals, in the order of their numbers; none in a store of the first version.
std::vector<Seal> ReadSeals(const Reader& store);

/// Faults in the chain of seals, one line each.
std::vector<std::string> ChainFindings(const std::vector<Seal>& seals);

/// How far each run is sealed, by its guid; the records of no run have an empty guid.
using Sealed = std::map<std::string, Numbers>;
Sealed SealedUpTo(const std::vector<Seal>& seals);

/// Whether a run has records that are not sealed.
bool HasMore(const Reader& store, const Run& run, const Sealed& sealed);
/// Whether there are records of no run that are not sealed.
bool HasMoreOfNoRun(const Reader& store, const Sealed& sealed);

/// The line of JSON from which the hash of a seal is computed.
/// @param sealedAt,schema,tool the columns that are not in Seal.
std::string LineOf(const Seal& seal, const std::string& sealedAt, long long schema, const std::string& tool);

}  // namespace Velora::Store
