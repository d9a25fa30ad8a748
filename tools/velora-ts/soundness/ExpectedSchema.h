#pragma once

#include <map>
#include <string>

/// The tables, indexes, views and triggers of a database, each with the statement that made it.
inline constexpr const char* schemaObjects =
    "SELECT type || ' ' || name, COALESCE(sql, '') FROM sqlite_master WHERE name NOT GLOB 'sqlite_*'";

/// What a store of a version holds of them.
std::map<std::string, std::string> ExpectedSchema(int version);
