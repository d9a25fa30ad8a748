#pragma once

#include "store/database/Database.h"

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {

class Reader;
struct Table;

/// Only stores with the schema of this code are copied.
/// @throws Error for a store of another version.
void ExpectThisVersion(const Reader& store);

/// Is called with each row of a store, in the order of the keys within its table.
/// @param row the row in the form of RowBytes.h.
using RowVisitor = std::function<void(const Table& table, std::string_view row)>;

/// Copies all rows of a store into another database, or continues an earlier copy. An empty database is filled in one
/// transaction; later rows are added in portions.
/// @param visit is called with the rows of the store, also with those that an earlier copy took over.
/// @throws Error when the target has rows that are not in the store.
void CopyRows(const Reader& from, const Database& target, const RowVisitor& visit);

/// Reads all rows of a store.
void VisitRows(const Reader& store, const RowVisitor& visit);

}  // namespace Velora::Store
