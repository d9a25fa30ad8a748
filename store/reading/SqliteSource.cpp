#include "store/reading/SqliteSource.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/Share.h>
#include "store/Error.h"
#include "store/reading/WrittenMeanwhile.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <system_error>

namespace Velora::Store {

namespace {

constexpr int longestWaitMilliseconds =
    5000;  // for a host that recovers after a crash; hosts that write make nobody wait

std::filesystem::file_time_type WrittenAt(const std::string& path) {
  std::error_code unknown;
  return std::filesystem::last_write_time(System::PathOf(path), unknown);
}

bool HasContent(const std::string& path) {
  std::error_code unknown;
  const auto size = std::filesystem::file_size(System::PathOf(path), unknown);
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

}  // namespace

SqliteSource::SqliteSource(const std::string& path) : path(path) { OpenFile(); }

void SqliteSource::OpenFile() {
  std::error_code unknown;
  if (!std::filesystem::exists(System::PathOf(path), unknown)) {
    throw NoStoreYet("there is no TS store '" + path + "'; the first host that records makes it");
  }
  if (const std::string kind = System::KindOfNoFile(System::PathOf(path)); !kind.empty()) {
    throw Error("TS database '" + path + "' is " + kind + "; expected a regular file");
  }
  Open(path, "?mode=ro");
  // SQLite follows links, and keeps its log and journal beside the file to which they lead.
  const char* const name = sqlite3_db_filename(connection->Handle(), "main");
  file = name;
  ExpectOneName();
  written = WrittenAt(file);
  // If a host has the file open, its log lies beside it. If there is no log, SQLite would make one for a reader too,
  // which would stay behind, and would fail for a user who may not write to the folder.
  closed = !std::filesystem::exists(System::PathOf(sqlite3_filename_wal(name)), unknown) &&
           !HasContent(sqlite3_filename_journal(name));
  if (closed) {
    Open(file, "?immutable=1");
  } else if (System::IsOnShare(file)) {
    throw Error("TS database '" + path + "' is on a share, and its log '" + sqlite3_filename_wal(name) +
                "' is in use or was left; expected a command on the computer that has the disk, or a copy that "
                "velora-ts backup made");
  }
  Begin();
}

void SqliteSource::Open(const std::string& name, const char* how) {
  try {
    connection = std::make_unique<SqliteConnection>(path, UriOf(System::AtAnyLength(name), how),
                                                    SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
  } catch (const DatabaseError& error) {
    throw Error("TS database '" + path + "' cannot be opened: " + error.reason);
  }
  connection->ExplainErrorsBy([this](const DatabaseError&) { ExpectUntouched(); });
  sqlite3_busy_timeout(connection->Handle(), longestWaitMilliseconds);
}

void SqliteSource::ExpectOneName() const {
  std::error_code unknown;
  const auto names = std::filesystem::hard_link_count(System::PathOf(file), unknown);
  if (!unknown && names > 1) {
    throw Error("TS database '" + path + "' has " + std::to_string(names) +
                " names (hard links), and what hosts record may be in a log beside another one; expected one name: "
                "remove the others");
  }
}

// Begins to read, so that all queries see one state.
void SqliteSource::Begin() {
  sqlite3* const handle = connection->Handle();
  if (sqlite3_exec(handle, "BEGIN; SELECT 1 FROM sqlite_master", nullptr, nullptr, nullptr) == SQLITE_OK) {
    return;
  }
  const int reason = sqlite3_extended_errcode(handle);
  std::string words = std::string("cannot be read: ") + sqlite3_errmsg(handle);
  if (reason == SQLITE_READONLY_ROLLBACK || reason == SQLITE_CANTOPEN) {
    const char* const name = sqlite3_db_filename(handle, "main");
    words = reason == SQLITE_CANTOPEN ? std::string("cannot be read with its log '") + sqlite3_filename_wal(name)
                                      : std::string("cannot be read: a program ended while it wrote, and left '") +
                                            sqlite3_filename_journal(name);
    words += "'; expected a user who may write there to open it first: the next host, or sqlite3 '" + path +
             "' 'PRAGMA quick_check'";
  }
  throw Error("TS database '" + path + "' " + words);
}

bool SqliteSource::IsStore() {
  return connection->Find<int>("SELECT 1 FROM sqlite_master WHERE name = 'ts_schema'").has_value();
}

void SqliteSource::ExpectUntouched() const {
  if (closed && WrittenAt(file) != written) {
    throw WrittenMeanwhile(
        "TS database '" + path +
        "' was not in use, and a host began to write to it while it was read; run the command again");
  }
}

}  // namespace Velora::Store
