#pragma once

#include "store/database/Connection.h"

#include <sqlite3.h>

#include <memory>
#include <string>

namespace Velora::Store {

/// A connection to an SQLite file.
class SqliteConnection : public Connection {
 public:
  /// @param name the name of the file in errors.
  /// @param file its path, or a URI if the flags say so.
  /// @param flags the flags for sqlite3_open_v2().
  /// @throws DatabaseError when it cannot be opened.
  SqliteConnection(std::string name, const std::string& file, int flags);
  ~SqliteConnection() override { ForgetStatements(); }

  std::unique_ptr<Cursor> Prepare(const std::string& statement) override;
  std::unique_ptr<Cursor> PrepareShort(const std::string& statement) override;
  void RunScript(const std::string& statements) override;

  sqlite3* Handle() const { return handle.get(); }
  /// Throws the last error of SQLite on this connection.
  [[noreturn]] void Fail() const;

 private:
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle{nullptr, &sqlite3_close};
};

/// Whether an error says that another connection has locked the file.
bool IsBusy(const DatabaseError& error);

}  // namespace Velora::Store
