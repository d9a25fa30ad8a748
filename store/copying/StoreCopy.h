#pragma once

#include "store/copying/RowCopy.h"
#include "store/recording/Writer.h"

#include <memory>
#include <optional>

namespace Velora::Store {

/// Only stores with the schema of this code are copied.
/// @throws Error for a store of another version.
void ExpectThisVersion(const Reader& store);

/// What a copy is in its target.
struct Copied {
  std::optional<long long> number;  ///< The number of the copied store there; nothing if the target is a copy itself.
  std::unique_ptr<Writer> store;    ///< As long as it is open, nobody else adds rows of the copied store on a server.

  /// The keys of its rows.
  Keys Range() const { return number ? Keys::OfStore(*number) : Keys::All(); }
};

/// Copies all rows of a store into another database, which can have the rows of other stores, or continues an earlier
/// copy. An empty database and a file are filled in one transaction; other rows are added in portions.
///
/// A store in a file that has its own rows alone gets a number in the target. Any other store is only copied into an
/// empty one, with all its keys.
/// @param visit is called with the rows of the store, also with those that an earlier copy took over.
/// @throws Error when the target cannot take in the store, or has rows of it that differ.
Copied CopyRows(const Reader& from, const Database& target, const RowVisitor& visit);

}  // namespace Velora::Store
