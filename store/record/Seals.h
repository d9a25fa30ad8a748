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

/// A seal, as it stands in its row.
struct Seal {
  long long number = 0;
  std::string run;  ///< Empty for what belongs to no run.
  std::string upTo;
  std::string counts;
  std::string contentHash;
  std::string previousHash;
  std::string hash;
  std::string ownHash;  ///< What `hash` should be.

  bool operator==(const Seal&) const = default;
};

/// The hash before that of the first seal.
inline const std::string noHash(64, '0');

/// Numbers of the kinds as a seal has them, and back; nothing for a text that is none.
std::string ToText(const Numbers& numbers);
std::optional<Numbers> FromText(const std::string& text);

/// All seals, in the order of their numbers; none in a store of the first version.
std::vector<Seal> ReadSeals(const Reader& store);

/// What is wrong with the chain that seals make, one line each.
std::vector<std::string> ChainFindings(const std::vector<Seal>& seals);

/// How far each run is sealed, and under the empty text what belongs to none.
using Sealed = std::map<std::string, Numbers>;
Sealed SealedUpTo(const std::vector<Seal>& seals);

/// Whether there is anything of a run, or of what belongs to none, that is not sealed.
bool HasMore(const Reader& store, const Run& run, const Sealed& sealed);
bool HasMoreOfNoRun(const Reader& store, const Sealed& sealed);

/// The line of JSON that a seal's hash is made of.
/// @param sealedAt,schema,tool the columns that nothing else is done with.
std::string LineOf(const Seal& seal, const std::string& sealedAt, long long schema, const std::string& tool);

}  // namespace Velora::Store
