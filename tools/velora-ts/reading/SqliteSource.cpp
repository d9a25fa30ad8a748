#include "reading/SqliteSource.h"

#include <TSAL/Error.h>
#include <VeloraSystem/RegularFile.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <new>
#include <system_error>

namespace Velora::Ts {

using Quor::TolvaServices::TsError;

namespace {

constexpr int longestWaitMilliseconds = 5000;  // for a host that tidies up after a crash, not for one that writes

std::filesystem::file_time_type WrittenAt(const std::string& path) {
  std::error_code unknown;
  return std::filesystem::last_write_time(path, unknown);
}

bool HasContent(const std::string& path) {
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  return !unknown && size > 0;
}

std::string UriOf(const std::string& path, const char* how) {
  std::string uri = path.starts_with('/') ? "file://" : "file:";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (std::isalnum(byte) != 0 || character == '/' || character == '.') {
      uri += character;
    } else {
      std::array<char, 4> escaped{};
      static_cast<void>(std::snprintf(escaped.data(), escaped.size(), "%%%02X", byte));
      uri += escaped.data();
    }
  }
  return uri + how;
}

class SqliteCursor : public Cursor {
 public:
  SqliteCursor(const SqliteSource& source, const std::string& path, const std::string& question)
      : source(source), path(path), statement(nullptr, &sqlite3_finalize) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(source.Handle(), question.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
      Fail();
    }
    statement.reset(prepared);
  }

  void Restart() override {
    sqlite3_reset(statement.get());
    over = false;
  }
  void Bind(int place, long long value) override { sqlite3_bind_int64(statement.get(), place, value); }
  void Bind(int place, const std::string& value) override {
    sqlite3_bind_text(statement.get(), place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
  }
  bool Next() override {
    if (over) {
      return false;  // SQLite would begin again
    }
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
      Fail();
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
  [[noreturn]] void Fail() const {
    source.ExpectUntouched();
    throw TsError("TS store '" + path + "': " + sqlite3_errmsg(source.Handle()));
  }

  const SqliteSource& source;
  const std::string path;
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement;
  bool over = false;
};

}  // namespace

SqliteSource::SqliteSource(const std::string& path) : path(path) {
  std::error_code unknown;
  if (!std::filesystem::exists(path, unknown)) {
    throw TsError("there is no TS store '" + path + "'; the first host that records makes it");
  }
  if (const std::string kind = Velora::System::KindOfNoFile(path); !kind.empty()) {
    throw TsError("TS store '" + path + "' is " + kind + "; expected a regular file");
  }
  Open(path, "?mode=ro");
  // SQLite follows links, and keeps its log and its journal beside the file that they lead to.
  const char* const name = sqlite3_db_filename(handle.get(), "main");
  file = name;
  ExpectOneName();
  written = WrittenAt(file);
  // A host that has the file open keeps its log beside it. Without one, SQLite would make one for a reader as well,
  // which one who may not write the folder cannot, and which would stay behind.
  closed = !std::filesystem::exists(sqlite3_filename_wal(name), unknown) && !HasContent(sqlite3_filename_journal(name));
  if (closed) {
    Open(file, "?immutable=1");
  }
  Begin();
}

void SqliteSource::Open(const std::string& name, const char* how) {
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(UriOf(name, how).c_str(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  handle.reset(opened);
  if (opened == nullptr) {
    throw std::bad_alloc();
  }
  if (result != SQLITE_OK) {
    throw TsError("TS store '" + path + "' cannot be opened: " + sqlite3_errmsg(opened));
  }
  sqlite3_busy_timeout(opened, longestWaitMilliseconds);
}

void SqliteSource::ExpectOneName() const {
  std::error_code unknown;
  const auto names = std::filesystem::hard_link_count(file, unknown);
  if (!unknown && names > 1) {
    throw TsError("TS store '" + path + "' has " + std::to_string(names) +
                  " names (hard links), and what hosts record may be in a log beside another one; expected one name: "
                  "remove the others");
  }
}

// Begins to read, so that all questions are answered from one state.
void SqliteSource::Begin() {
  if (sqlite3_exec(handle.get(), "BEGIN; SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr) == SQLITE_OK) {
    return;
  }
  const int reason = sqlite3_extended_errcode(handle.get());
  std::string words = std::string("cannot be read: ") + sqlite3_errmsg(handle.get());
  if (reason == SQLITE_READONLY_ROLLBACK || reason == SQLITE_CANTOPEN) {
    const char* const name = sqlite3_db_filename(handle.get(), "main");
    words = reason == SQLITE_CANTOPEN ? std::string("cannot be read with its log '") + sqlite3_filename_wal(name)
                                      : std::string("cannot be read: a program ended while it wrote, and left '") +
                                            sqlite3_filename_journal(name);
    words += "'; expected one who may write there to open it first: the next host, or sqlite3 '" + path +
             "' 'PRAGMA quick_check'";
  }
  throw TsError("TS store '" + path + "' " + words);
}

bool SqliteSource::IsStore() {
  const auto tables = Prepare("SELECT COUNT(*) FROM sqlite_master WHERE name = 'ts_schema'");
  return tables->Next() && tables->Integer(0) != 0;
}

std::unique_ptr<Cursor> SqliteSource::Prepare(const std::string& question) {
  return std::make_unique<SqliteCursor>(*this, path, question);
}

void SqliteSource::ExpectUntouched() const {
  if (closed && WrittenAt(file) != written) {
    throw TsError("TS store '" + path + "' was closed and began to be written while it was read; once more, please");
  }
}

}  // namespace Velora::Ts
