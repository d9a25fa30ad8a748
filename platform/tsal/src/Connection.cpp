#include "Connection.h"

#include "Schema.h"

#include <soci/sqlite3/soci-sqlite3.h>
#include <sqlite3.h>

#include <chrono>
#include <thread>

namespace Quor::TolvaServices::Local {
namespace {

constexpr std::chrono::seconds longestWait{30};

bool IsBusy(const soci::soci_error& error) {
  const auto* const sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error);
  return sqlite != nullptr && (sqlite->result() & 0xFF) == SQLITE_BUSY;
}

// Turning the write-ahead log on is the one statement that fails at once when another process is about to do the same.
void TurnOnWriteAheadLog(soci::session& sql) {
  const auto deadline = std::chrono::steady_clock::now() + longestWait;
  for (;;) {
    try {
      std::string mode;
      sql << "PRAGMA journal_mode = WAL", soci::into(mode);
      if (mode != "wal") {
        throw TsError("the write-ahead log cannot be turned on; the journal stays '" + mode + "'");
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
  try {
    sql.open(soci::sqlite3, "dbname=\"" + database + "\"");
  } catch (const std::exception& reason) {
    throw NotReachable("TS database '" + database + "' cannot be opened: " + reason.what());
  }
  try {
    Configure();
    PrepareSchema();
  } catch (const std::exception& reason) {
    Fail(database, reason);
  }
}

void Connection::Fail(const std::string& database, const std::exception& reason) {
  throw TsError("TS database '" + database + "': " + reason.what());
}

EventStatements& Connection::Events() {
  if (!events) {
    events.emplace(sql);
  }
  return *events;
}

void Connection::Configure() {
  sql << "PRAGMA busy_timeout = " +
             std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(longestWait).count());
  sql << "PRAGMA foreign_keys = ON";
  sql << "PRAGMA synchronous = FULL";  // a commit is on the disk when it returns
  TurnOnWriteAheadLog(sql);
}

void Connection::PrepareSchema() {
  int version = StoredSchemaVersion();
  if (version == 0) {
    Transaction transaction(sql);
    version = StoredSchemaVersion();  // another process may have been first
    if (version == 0) {
      CreateSchema(sql);
      transaction.Commit();
      return;
    }
  }
  if (version != schemaVersion) {
    throw TsError("its schema has version " + std::to_string(version) + "; expected version " +
                  std::to_string(schemaVersion) + " at most: a newer program made it");
  }
}

// 0 for a database without tables.
int Connection::StoredSchemaVersion() {
  int tables = 0;
  sql << "SELECT COUNT(*) FROM sqlite_master", soci::into(tables);
  if (tables == 0) {
    return 0;
  }
  int own = 0;
  sql << "SELECT COUNT(*) FROM sqlite_master WHERE name = 'ts_schema'", soci::into(own);
  if (own == 0) {
    throw TsError("it is no TS store: it holds tables of another program; expected an empty database or a TS store");
  }
  int version = 0;
  sql << "SELECT MAX(version) FROM ts_schema", soci::into(version);
  return version;
}

Transaction::Transaction(soci::session& sql) : sql(sql) { sql << "BEGIN IMMEDIATE"; }

Transaction::~Transaction() {
  if (!open) {
    return;
  }
  try {
    sql << "ROLLBACK";
  } catch (...) {
    // What made the transaction end is being raised already.
  }
}

void Transaction::Commit() {
  sql << "COMMIT";
  open = false;
}

long long LastRow(soci::session& sql) {
  long long row = 0;
  sql.get_last_insert_id("", row);
  return row;
}

}  // namespace Quor::TolvaServices::Local
