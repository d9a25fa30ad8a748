#pragma once

#include "store/database/Database.h"

#include <string>

namespace Velora::Store {

/// Makes a store or brings it up, and lets a role of the server record in it and do nothing else.
/// @param hosts the role; empty for none.
/// @throws NotOffered for a role where the database has none; Error when the server does not know it, or it owns the
/// store.
void PrepareStore(const Database& database, const std::string& hosts);

}  // namespace Velora::Store
