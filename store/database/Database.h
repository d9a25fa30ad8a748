#pragma once

#include <string>

namespace Velora::Store {

/// The database of a store.
struct Database {
  enum class Kind { Sqlite, PostgreSql };

  Kind kind = Kind::Sqlite;
  std::string where;  ///< The absolute path of the file, or the address for PostgreSQL's client library.
};

/// The name of a database in errors, without a password: the file, or "velora on db.example".
std::string NameOf(const Database& database);

/// The folder of a database in a file; empty for a database on a server.
std::string FolderOf(const Database& database);

}  // namespace Velora::Store
