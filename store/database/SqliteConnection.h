#pragma once

#include "store/database/Connection.h"

#include <sqlite3.h>

#include <memory>
#include <string>

namespace Velora::Store {

/// A connection to a file of SQLite.
class SqliteConnection : public Connection {
 public:
  /// @param name as errors call it.
  /// @param file its path, or a URI where the flags say so.
  /// @param flags as sqlite3_open_v2 takes them.
  /// @throws DatabaseError
  SqliteConnection(std::string name, const std::string& file, int flags);
  ~SqliteConnection() override { ForgetStatements(); }

  std::unique_ptr<Cursor> Prepare(const std::string& statement) override;
  std::unique_ptr<Cursor> PrepareShort(const std::string& statement) override { return Prepare(statement); }
  void RunScript(const std::string& statements) override;

  sqlite3* Handle() const { return handle.get(); }
  /// Raises what SQLite said last on this connection.
  [[noreturn]] void Fail() const;

 private:
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> handle{nullptr, &sqlite3_close};
};

/// Whether an error says that another connection has the file.
bool IsBusy(const DatabaseError& error);

}  // namespace Velora::Store
