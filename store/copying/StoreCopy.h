#pragma once

#include "store/database/Database.h"

#include <functional>
#include <string>

namespace Velora::Store {

class Reader;

/// Copies all rows of a store into another database, or goes on with a copy that was interrupted.
/// @param copied called with the table of each row that was copied.
/// @throws Error when the target holds rows that are not of this store.
void CopyRows(const Reader& from, const Database& target, const std::function<void(const std::string& table)>& copied);

}  // namespace Velora::Store
