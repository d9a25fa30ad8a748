#pragma once

#include <map>
#include <string>

namespace Velora::Store {

/// All objects of a database: what each is and is called, and, after the table that it belongs to, the statement that
/// made it. No name is left out, and no kind, which SQLite reads in any case of letters.
inline constexpr const char* schemaObjects =
    "SELECT type || ' ' || name, tbl_name || ': ' || COALESCE(sql, '') FROM sqlite_master";

/// What a store of a version holds of them.
std::map<std::string, std::string> ExpectedSchema(int version);

}  // namespace Velora::Store
