#pragma once

#include <map>
#include <string>

namespace Velora::Store {

class Connection;

/// A query for all objects of a database: type and name, and the table and statement of each. It leaves out nothing,
/// also no types in capital letters, which SQLite accepts.
inline constexpr const char* schemaObjects =
    "SELECT type || ' ' || name, tbl_name || ': ' || COALESCE(sql, '') FROM sqlite_master";

/// The rows of `schemaObjects` in a database.
std::map<std::string, std::string> SchemaObjects(Connection& connection);

/// Those in a new store of a version.
std::map<std::string, std::string> ExpectedSchema(int version);

}  // namespace Velora::Store
