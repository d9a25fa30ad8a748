#pragma once

#include "store/schema/Versions.h"

namespace Velora::Store {

class Connection;

// Bring the schema of a database from one version up to another, within a transaction; an empty database has version 0.

void BringUpSqlite(Connection& connection, int from, int to = schemaVersion);

/// The connection's current schema. Version 2 is the first that a server can have.
void BringUpPostgreSql(Connection& connection, int from, int to = schemaVersion);

}  // namespace Velora::Store
