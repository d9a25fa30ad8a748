#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// The version of the schema that this code makes and uses: docs/local-ts.md.
inline constexpr int schemaVersion = 3;

/// What ts_schema says of the schema. A version that only adds to the one before is entered as a negative number there:
/// hosts take the highest number for the version, and refuse one above their own.
struct StoreVersion {
  int number = 0;      ///< The version of the schema.
  int lowestHost = 0;  ///< The lowest version of a host that may record.

  /// Whether this code can use the store, after an upgrade if its version is an earlier one.
  bool IsUsable() const { return lowestHost >= 1 && lowestHost <= schemaVersion; }
};

/// The numbers to enter in ts_schema for an upgrade from one version to another.
std::vector<int> VersionEntries(int from, int to = schemaVersion);

/// The statements that upgrade an SQLite file from one version to another. An empty file has version 0.
std::vector<std::string> SqliteSchema(int from, int to = schemaVersion);

/// The statements that upgrade a database on a server, in one text for one round trip. Hosts may record into a store of
/// version 2 meanwhile. No server has version 1.
/// @param schema the name of the schema, quoted.
std::string PostgreSqlSchema(const std::string& schema, int from, int to = schemaVersion);

}  // namespace Velora::Store
