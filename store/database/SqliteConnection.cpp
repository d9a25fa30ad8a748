#include "store/database/SqliteConnection.h"

#include <new>
#include <utility>

namespace Velora::Store {
namespace {

class SqliteCursor : public Cursor {
 public:
  SqliteCursor(const SqliteConnection& connection, const std::string& text, bool isKept)
      : connection(connection), boundTexts(isKept ? SQLITE_STATIC : SQLITE_TRANSIENT) {
    sqlite3_stmt* prepared = nullptr;
    Expect(sqlite3_prepare_v3(connection.Handle(), text.c_str(), static_cast<int>(text.size() + 1),
                              isKept ? SQLITE_PREPARE_PERSISTENT : 0, &prepared, nullptr));
    statement.reset(prepared);
  }

  // An error of the run was already thrown when it happened.
  void Restart() override {
    sqlite3_reset(statement.get());
    over = false;
  }
  void Bind(int place, std::nullptr_t) override { Expect(sqlite3_bind_null(statement.get(), place)); }
  void Bind(int place, long long value) override { Expect(sqlite3_bind_int64(statement.get(), place, value)); }
  void Bind(int place, double value) override { Expect(sqlite3_bind_double(statement.get(), place, value)); }
  void Bind(int place, std::string_view value) override {
    const char* const text = value.data() == nullptr ? "" : value.data();  // a null pointer would bind NULL
    Expect(sqlite3_bind_text64(statement.get(), place, text, value.size(), boundTexts, SQLITE_UTF8));
  }
  bool Next() override {
    if (over) {
      return false;  // SQLite would run the statement again
    }
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
      connection.Fail();
    }
    over = result == SQLITE_DONE;
    return !over;
  }

  int Columns() const override { return sqlite3_column_count(statement.get()); }
  const char* Name(int column) const override { return sqlite3_column_name(statement.get(), column); }
  Type TypeOf(int column) const override {
    switch (sqlite3_column_type(statement.get(), column)) {
      case SQLITE_INTEGER:
        return Type::Integer;
      case SQLITE_FLOAT:
        return Type::Number;
      case SQLITE_TEXT:
        return Type::Text;
      case SQLITE_BLOB:
        return Type::Blob;
      default:
        return Type::Null;
    }
  }
  long long Integer(int column) const override { return sqlite3_column_int64(statement.get(), column); }
  double Number(int column) const override { return sqlite3_column_double(statement.get(), column); }
  std::string_view Text(int column) const override {
    const void* const bytes = sqlite3_column_blob(statement.get(), column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column))};
  }

 private:
  void Expect(int result) const {
    if (result != SQLITE_OK) {
      connection.Fail();
    }
  }

  const SqliteConnection& connection;
  const sqlite3_destructor_type boundTexts;
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement{nullptr, &sqlite3_finalize};
  bool over = false;
};

// On Windows, the access to files that takes paths of any length. Elsewhere there is none of this name.
const char* AnyLength() {
  constexpr const char* name = "win32-longpath";
  return sqlite3_vfs_find(name) != nullptr ? name : nullptr;
}

}  // namespace

// Without SQLite's mutex, which every call would lock: one thread at a time uses a connection.
SqliteConnection::SqliteConnection(std::string name, const std::string& file, int flags) : Connection(std::move(name)) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(file.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, AnyLength());
  handle.reset(opened);
  if (result == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  if (result != SQLITE_OK) {
    Fail();
  }
}

std::unique_ptr<Cursor> SqliteConnection::Prepare(const std::string& statement) {
  return std::make_unique<SqliteCursor>(*this, statement, false);
}

std::unique_ptr<Cursor> SqliteConnection::PrepareShort(const std::string& statement) {
  return std::make_unique<SqliteCursor>(*this, statement, true);
}

void SqliteConnection::RunScript(const std::string& statements) {
  if (sqlite3_exec(handle.get(), statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    Fail();
  }
}

void SqliteConnection::Fail() const {
  Raise(sqlite3_errmsg(handle.get()), std::to_string(sqlite3_errcode(handle.get()) & 0xFF));
}

std::unique_ptr<Connection> ConnectToMemory() {
  return std::make_unique<SqliteConnection>("in memory", ":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

bool IsBusy(const DatabaseError& error) { return error.code == std::to_string(SQLITE_BUSY); }

}  // namespace Velora::Store
