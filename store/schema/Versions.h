#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 3;

/// The statements that bring a file of SQLite from one version up to another; an empty one has version 0.
std::vector<std::string> SqliteSchema(int from, int to = schemaVersion);

/// The same for a database on a server, in one text, since that may be far away. A store of version 2 may be recorded
/// into meanwhile. No server had version 1.
/// @param schema the name of the database's schema, quoted.
std::string PostgreSqlSchema(const std::string& schema, int from, int to = schemaVersion);

}  // namespace Velora::Store
