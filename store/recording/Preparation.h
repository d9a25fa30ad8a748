#pragma once

#include "store/database/Database.h"

#include <string>

namespace Velora::Store {

/// Makes or upgrades a store, and allows a role of the server to record into it and nothing else.
/// @param hosts the role; empty for none.
/// @throws NotOffered when a role is given for a database that has no roles. @throws Error when the server does not
/// know the role, or the role owns the store.
void PrepareStore(const Database& database, const std::string& hosts);

}  // namespace Velora::Store
