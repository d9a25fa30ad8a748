#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// The version of the schema that this code makes and uses: docs/local-ts.md.
inline constexpr int schemaVersion = 3;

/// The statements that upgrade an SQLite file from one version to another. An empty file has version 0.
std::vector<std::string> SqliteSchema(int from, int to = schemaVersion);

/// The statements that upgrade a database on a server, in one text for one round trip. Hosts may record into a store of
/// version 2 meanwhile. No server has version 1.
/// @param schema the name of the schema, quoted.
std::string PostgreSqlSchema(const std::string& schema, int from, int to = schemaVersion);

}  // namespace Velora::Store
