#include "Store.h"

#include "Rows.h"
#include "Schema.h"

#include <TSAL/Error.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <new>
#include <system_error>

using Quor::TolvaServices::TsError;

namespace {

constexpr int longestWaitMilliseconds = 5000;  // for a host that tidies up after a crash, not for one that writes

std::filesystem::file_time_type WrittenAt(const std::string& path) {
  std::error_code unknown;
  return std::filesystem::last_write_time(path, unknown);
}

std::string UriOf(const std::string& path, bool closed) {
  std::string uri = "file:";
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
  return uri + (closed ? "?immutable=1" : "?mode=ro");
}

}  // namespace

Store::Store(const Quor::TolvaServices::Local::Database& database) : path(database.where) {
  std::error_code unknown;
  if (!std::filesystem::exists(path, unknown)) {
    throw TsError("there is no TS store '" + path + "'; the first host that records makes it");
  }
  // A host that has the file open keeps its log beside it. Without one, SQLite would make one for a reader as well,
  // which one who may not write the folder cannot, and which would stay behind.
  closed = !std::filesystem::exists(path + "-wal", unknown);
  written = WrittenAt(path);
  Open();
  Rows tables(*this, "SELECT COALESCE(SUM(name = 'ts_schema'), 0) FROM sqlite_master");
  tables.Next();
  if (tables.Integer(0) == 0) {
    throw TsError("'" + path + "' is no TS store; expected a database with the tables of one");
  }
  Rows version(*this, "SELECT COALESCE(MAX(version), 0) FROM ts_schema");
  version.Next();
  schemaVersion = static_cast<int>(version.Integer(0));
  using Quor::TolvaServices::Local::schemaVersion;
  if (SchemaVersion() < 1 || SchemaVersion() > schemaVersion) {
    throw TsError("TS store '" + path + "' has a schema of version " + std::to_string(SchemaVersion()) +
                  "; expected version " + std::to_string(schemaVersion) + " at most");
  }
}

void Store::Open() {
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(UriOf(path, closed).c_str(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  handle.reset(opened);
  if (opened == nullptr) {
    throw std::bad_alloc();
  }
  if (result != SQLITE_OK) {
    throw TsError("TS store '" + path + "' cannot be opened: " + sqlite3_errmsg(opened));
  }
  sqlite3_busy_timeout(opened, longestWaitMilliseconds);
  Rows(*this, "BEGIN").Next();
}

void Store::ExpectUntouched() const {
  if (closed && WrittenAt(path) != written) {
    throw TsError("TS store '" + path + "' was closed and began to be written while it was read; once more, please");
  }
}
