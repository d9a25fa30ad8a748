#pragma once

#include "store/schema/Versions.h"

#include <optional>
#include <string>

namespace Velora::Store {

class Connection;

/// A query for the two numbers of a StoreVersion. The versions of other stores do not matter.
inline constexpr const char* askVersion =
    "SELECT COALESCE(MAX(ABS(version)), 0), COALESCE(MAX(version), 0) FROM ts_schema WHERE rowid < 10000000000";

StoreVersion VersionOf(Connection& store);

/// The store that a new one continues, and the hash of its newest seal.
struct Continued {
  std::string guid, hash;
};

// Upgrade the schema of a database from one version to another, within a transaction. An empty database has version 0.

/// @param previous for a new store that continues another one.
void BringUpSqlite(Connection& connection, int from, int to = schemaVersion,
                   const std::optional<Continued>& previous = std::nullopt);

/// Upgrades the current schema of the connection. Servers have version 2 or later.
void BringUpPostgreSql(Connection& connection, int from, int to = schemaVersion);

}  // namespace Velora::Store
