#pragma once

#include <string>

namespace Velora::Store {

/// Which database holds a store.
struct Database {
  enum class Kind { Sqlite, PostgreSql };

  Kind kind = Kind::Sqlite;
  std::string where;  ///< Absolute path of the file, or what PostgreSQL's client library takes to connect.
};

/// The database in words, as errors call it, without a password: the file, or "velora on db.example".
std::string NameOf(const Database& database);

/// The folder on this computer in which the database lies; empty for one on a server.
std::string FolderOf(const Database& database);

}  // namespace Velora::Store
