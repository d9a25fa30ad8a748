#include "Connection.h"

#include "Schema.h"
#include "Statement.h"

#include <VeloraSystem/System.h>

#include <soci/sqlite3/soci-sqlite3.h>
#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <new>
#include <thread>
#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

constexpr std::chrono::seconds longestWait{30};

// The byte of the file of shared memory that SQLite locks for the one writer of its write-ahead log.
constexpr unsigned writeLock = 120;

// SOCI takes a path within a text of keys and values, where one with quotes and blanks ends early and names another
// file. So the file is opened here, and put in the place of the nameless database that SOCI opened.
void Open(soci::session& sql, const std::string& database) {
  using sqlite_api::sqlite3;
  sql.open(soci::sqlite3, ":memory:");
  // Made here, since SQLite lets everybody read what it makes; its other files get the mode of this one.
  Velora::System::MakeOwnFile(database);
  sqlite3* handle = nullptr;
  const int result =
      sqlite_api::sqlite3_open_v2(database.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  std::unique_ptr<sqlite3, decltype(&sqlite_api::sqlite3_close)> opened(handle, &sqlite_api::sqlite3_close);
  if (result == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  if (result != SQLITE_OK) {
    throw NotReachable("TS database '" + database + "' cannot be opened: " + sqlite_api::sqlite3_errmsg(opened.get()));
  }
  if (sqlite_api::sqlite3_db_readonly(opened.get(), "main") != 0) {
    throw TsError("TS database '" + database + "' can only be read; expected a file that may be written");
  }
  auto* const backend = static_cast<soci::sqlite3_session_backend*>(sql.get_backend());
  opened.reset(std::exchange(backend->conn_, opened.release()));
}

bool IsBusy(const soci::soci_error& error) {
  const auto* const sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error);
  return sqlite != nullptr && (sqlite->result() & 0xFF) == SQLITE_BUSY;
}

// Called while another connection is writing. In short steps: between two records of a host at full speed there are
// some microseconds, which SQLite's own steps of up to a tenth of a second would miss for seconds on end.
int WaitForWriter(void* waited, int tries) {
  constexpr int briefly = 100;  // microseconds
  constexpr int longer = 1000;
  auto& total = *static_cast<std::chrono::microseconds*>(waited);
  if (tries == 0) {
    total = {};
  }
  if (total >= longestWait) {
    return 0;
  }
  sqlite_api::sqlite3_vfs* const system = sqlite_api::sqlite3_vfs_find(nullptr);
  total += std::chrono::microseconds(system->xSleep(system, tries < 100 ? briefly : longer));
  return 1;
}

// Turning the write-ahead log on is the one statement that fails at once when another process is about to do the same.
void TurnOnWriteAheadLog(soci::session& sql) {
  const auto deadline = std::chrono::steady_clock::now() + longestWait;
  for (;;) {
    try {
      std::string mode;
      Execute(sql, "PRAGMA journal_mode = WAL", soci::into(mode));
      if (mode != "wal") {
        throw soci::soci_error("the write-ahead log cannot be turned on; the journal stays '" + mode + "'");
      }
      return;
    } catch (const soci::soci_error& error) {
      if (!IsBusy(error) || std::chrono::steady_clock::now() > deadline) {
        throw;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
}

}  // namespace

Connection::Connection(const std::string& database) : database(database) {
  Open(sql, database);
  try {
    Configure();
    const int version = StoredVersion();  // asked first: nothing is changed in a file that is none of ours
    TurnOnWriteAheadLog(sql);
    if (version != schemaVersion) {
      BringUp();
    }
  } catch (const soci::soci_error& reason) {
    Fail(database, reason);
  }
}

void Connection::Fail(const std::string& database, const soci::soci_error& reason) {
  if (IsBusy(reason)) {
    throw TsError("TS database '" + database + "' was being written by " +
                  Velora::System::LockerOf(database + "-shm", writeLock) + " for more than " +
                  std::to_string(longestWait.count()) +
                  " seconds; expected it to finish: " + reason.get_error_message());
  }
  // Without the statement and its values, which can be as long as what was to be recorded.
  throw TsError("TS database '" + database + "': " + reason.get_error_message());
}

bool Connection::HasMoved() {
  int moved = 0;
  sqlite_api::sqlite3_file_control(static_cast<soci::sqlite3_session_backend*>(sql.get_backend())->conn_, "main",
                                   SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

EventStatements& Connection::Events() {
  if (!events) {
    events.emplace(sql);
  }
  return *events;
}

void Connection::Configure() {
  sqlite_api::sqlite3_busy_handler(static_cast<soci::sqlite3_session_backend*>(sql.get_backend())->conn_,
                                   &WaitForWriter, &waited);
  Execute(sql, "PRAGMA foreign_keys = ON");
  Execute(sql, "PRAGMA synchronous = FULL");  // a commit is on the disk when it returns
}

int Connection::StoredVersion() {
  int tables = 0;
  int own = 0;
  Execute(sql, "SELECT COUNT(*), COALESCE(SUM(name = 'ts_schema'), 0) FROM sqlite_master", soci::into(tables),
          soci::into(own));
  if (tables == 0) {
    return 0;
  }
  if (own == 0) {
    throw TsError("TS database '" + database +
                  "' is no TS store: it holds tables of another program; expected an empty database or a TS store");
  }
  int version = 0;
  Execute(sql, "SELECT COALESCE(MAX(version), 0) FROM ts_schema", soci::into(version));
  if (version < 1 || version > schemaVersion) {
    throw TsError("TS database '" + database + "' has a schema of version " + std::to_string(version) +
                  "; expected version " + std::to_string(schemaVersion) + " at most" +
                  (version > schemaVersion ? ": a newer program made it" : ""));
  }
  return version;
}

void Connection::BringUp() {
  Transaction transaction(sql);
  if (const int version = StoredVersion(); version != schemaVersion) {  // another process may have been first
    BringUpSchema(sql, version);
    transaction.Commit();
  }
}

Transaction::Transaction(soci::session& sql) : sql(sql) { Execute(sql, "BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
  if (!open) {
    return;
  }
  try {
    Execute(sql, "ROLLBACK");
  } catch (...) {
    // What made the transaction end is being raised already.
  }
}

void Transaction::Commit() {
  Execute(sql, "COMMIT");
  open = false;
}

long long LastRow(soci::session& sql) {
  long long row = 0;
  sql.get_last_insert_id("", row);
  return row;
}

}  // namespace Quor::TolvaServices::Local
