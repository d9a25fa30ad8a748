#pragma once

#include <string>

namespace Quor::TolvaServices::Local {

/// Which database holds a store.
struct Database {
  enum class Kind { Sqlite, PostgreSql };

  Kind kind = Kind::Sqlite;
  std::string where;  ///< Absolute path of the file, or what PostgreSQL's client library takes to connect.
};

/// What "TSAL.config" says.
struct Settings {
  std::string instrument;  ///< Under whose name a session's records stand.
  Database database;
};

/// Reads "TSAL.config" in a folder.
/// @param folder empty for the current directory.
/// @throws TsError naming file and line when the file cannot be used.
Settings ReadSettings(const std::string& folder);

}  // namespace Quor::TolvaServices::Local
