#pragma once

#include "store/database/Database.h"

#include <functional>
#include <string>

namespace Velora::Store {

class Reader;

/// Only stores with the schema of this code are copied.
/// @throws Error for a store of another version.
void ExpectThisVersion(const Reader& store);

/// Copies all rows of a store into another database, or continues an earlier copy.
/// @param copied is called with the table of each copied row.
/// @throws Error when the target has rows that are not in the store.
void CopyRows(const Reader& from, const Database& target, const std::function<void(const std::string& table)>& copied);

}  // namespace Velora::Store
