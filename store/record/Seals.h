#pragma once

#include "store/reading/KnownStores.h"
#include "store/reading/Rows.h"
#include "store/record/Records.h"
#include "store/record/Sha256.h"

#include <limits>
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
  long long schema = 0;  ///< The version of the schema with which it was made.
  std::string ownHash;   ///< The hash computed from the row, which must be equal to `hash`.
};

/// The previous hash of the first seal.
inline const std::string noHash(64, '0');

/// The form of numbers in a seal. It has notes and stores only if there are any, because old seals know none.
std::string ToText(const PerKind& numbers);
/// The numbers of that form; nothing for another text.
std::optional<PerKind> FromText(std::string_view text);

/// Reads the seals of one store one by one, in the order of their numbers. A store of the first version has none.
class SealRows {
 public:
  /// @param origin the number of the store that sealed.
  /// @param after,upTo reads the seals with numbers above one and up to the other.
  explicit SealRows(const Reader& store, long long origin = thisStore,
                    long long after = std::numeric_limits<long long>::min(),
                    long long upTo = std::numeric_limits<long long>::max());

  /// Goes to the next seal. @return whether there is one.
  bool Next();
  const Seal& Current() const { return seal; }
  /// The line of JSON from which the hash of the seal is computed.
  const std::string& Line() const { return line; }

 private:
  std::optional<Rows> rows;
  long long shift = 0;
  Sha256 sha;
  std::string line;
  Seal seal;
};

/// A chain of seals, as far as it was read.
class Chain {
 public:
  /// Reads on. @return the faults in the chain at this seal, one line each.
  std::vector<std::string> Add(const Seal& seal);

  long long origin = thisStore;  ///< The number of the store whose chain it is.
  long long number = 0;          ///< The number of the last seal.
  std::string hash = noHash;     ///< The hash of the last seal.
  PerKind upTo = none;           ///< How far the last seal covers the store.
  PerKind restUpTo = none;       ///< How far the records of no run are sealed.
  PerKind counts{};              ///< How many records all seals cover.
  long long seals = 0;           ///< How many seals there are.
};

/// The line of JSON from which the hash of a seal is computed.
/// @param sealedAt,schema,tool the columns that are not in Seal.
std::string LineOf(const Seal& seal, const std::string& sealedAt, long long schema, const std::string& tool);

}  // namespace Velora::Store
