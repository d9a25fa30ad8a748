#include "store/recording/SqliteWriter.h"

#include "store/schema/BringUp.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/StoreNumbers.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/SecondName.h>
#include <VeloraSystem/System.h>

#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

namespace Velora::Store {
namespace {

// The byte of the shared-memory file that SQLite locks for the writer of the write-ahead log.
constexpr unsigned writeLock = 120;

constexpr const char* rightsExpected =
    "; expected an existing folder, and the right to write it and the file, because a log is kept beside the file";

SqliteConnection Open(const std::string& file, Opening opening) {
  ExpectOwnDisk(file);
  if (const std::string kind = System::KindOfNoFile(System::PathOf(file));
      !kind.empty()) {  // SQLite would wait for a FIFO
    throw Error("TS database '" + file + "' is " + kind + "; expected a regular file");
  }
  if (opening == Opening::MakesStore) {
    // SQLite would make a file that everybody can read. Its other files get the permissions of this one.
    System::MakeOwnFile(file);
  } else if (std::error_code unknown; !std::filesystem::exists(System::PathOf(file), unknown) && !unknown) {
    throw StoreReplaced(file);
  }
  try {
    return {file, System::AtAnyLength(file),
            SQLITE_OPEN_READWRITE | (opening == Opening::MakesStore ? SQLITE_OPEN_CREATE : 0)};
  } catch (const DatabaseError& error) {
    throw NotReachable("TS database '" + file + "' cannot be opened: " + error.reason + rightsExpected);
  }
}

const char* ExpectedAfter(const DatabaseError& error) {
  switch (std::stoi(error.code)) {
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
      return rightsExpected;
    case SQLITE_NOTADB:
      return "; expected an SQLite file, or none yet";
    default:
      return "";
  }
}

}  // namespace

SqliteWriter::SqliteWriter(const std::string& file, Opening opening)
    : Writer(opening), connection(Open(file, opening)) {
  if (sqlite3_db_readonly(connection.Handle(), "main") != 0 || System::IsReadOnly(file)) {
    throw Error("TS database '" + file + "' can only be read; expected a file that may be written");
  }
  Configure();
  const bool isOld = StoredVersion() < schemaVersion;  // first, so that a file of another program is not changed
  if (isOld) {
    connection.RunScript("PRAGMA foreign_keys = OFF");  // which a transaction cannot do: tables are made again
  }
  if (opening == Opening::Tries) {
    return;
  }
  TurnOnWriteAheadLog();
  if (StoredVersion() < schemaVersion) {  // which also opens the log, if it was off
    BringUp();
  }
  if (isOld) {
    connection.RunScript("PRAGMA foreign_keys = ON");
  }
  files.emplace(connection.Handle(), file);
  ExpectFilesInPlace();
}

void SqliteWriter::Configure() {
  connection.ExplainErrorsBy([this](const DatabaseError& error) { Explain(error); });
  waiting.Serve(connection.Handle());
  connection.RunScript(
      "PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL");  // a commit is on the disk when it returns
}

// Leaves out the statement and its values, which can be as long as the record.
void SqliteWriter::Explain(const DatabaseError& error) const {
  const std::string database = "TS database '" + connection.Name() + "'";
  if (sqlite3_extended_errcode(connection.Handle()) == SQLITE_READONLY_DBMOVED) {
    throw StoreReplaced(connection.Name());
  }
  if (IsBusy(error)) {
    throw DatabaseError(database + " was being written by " +
                            System::LockerOf(SharedMemoryOf(connection.Handle()), writeLock) + " for more than " +
                            std::to_string(SqliteWaiting::longest.count()) +
                            " seconds; expected it to finish: " + error.reason,
                        error.reason, error.code);
  }
  throw DatabaseError(database + ": " + error.reason + ExpectedAfter(error), error.reason, error.code);
}

// Steps past the only row to the end of the statement, where the change is committed.
std::string SqliteWriter::AskForWriteAheadLog() {
  const auto pragma = connection.Prepare("PRAGMA journal_mode = WAL");
  pragma->Next();
  std::string mode(pragma->Text(0));
  pragma->Next();
  return mode;
}

// This statement alone fails at once, without waiting, when another process turns the log on at the same time.
void SqliteWriter::TurnOnWriteAheadLog() {
  const auto deadline = std::chrono::steady_clock::now() + SqliteWaiting::longest;
  for (;;) {
    try {
      if (const std::string mode = AskForWriteAheadLog(); mode != "wal") {
        throw Error("TS database '" + Name() + "': the write-ahead log cannot be turned on; the journal stays '" +
                    mode + "'");
      }
      return;
    } catch (const DatabaseError& error) {
      if (!IsBusy(error) || std::chrono::steady_clock::now() > deadline) {
        throw;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
}

// Begins as a writer: a transaction that begins by reading fails at once on its first write if another has written
// since.
void SqliteWriter::Begin() {
  waiting.TakeTurn(Name());
  connection.Run("BEGIN IMMEDIATE");
}

// Checks the files before the commit, so that an error means that nothing is stored, and after it, so that what is
// acknowledged can be found.
void SqliteWriter::Commit() {
  ExpectFilesInPlace();
  connection.Run("COMMIT");
  if (lock) {
    lock->Keep();
    lock.reset();
  }
  waiting.EndTurn();
  ExpectFilesInPlace();
}

void SqliteWriter::Rollback() {
  lock.reset();
  Writer::Rollback();
  waiting.EndTurn();
}

void SqliteWriter::HoldLock(long long session) {
  const std::string file = sqlite3_db_filename(connection.Handle(), "main");
  lock.emplace(LockFileOf(file), file, session);
  if (!lock->IsHeld()) {
    return;
  }
  try {
    connection.Run("INSERT INTO session_locks (session_id, place) VALUES (?1, ?2)", session, lock->Place());
  } catch (const DatabaseError&) {
    lock.reset();
    if (IsOutsideTransaction()) {
      throw;
    }
  }
}

long long SqliteWriter::NextKey(const std::string& table, const std::string& column) {
  return connection
      .Find<long long>("SELECT COALESCE(MAX(" + column + "), 0) + 1 FROM " + table + " WHERE " + IsOwn(column))
      .value();
}

// SQLite would number the rows of a host behind those of the last store that was taken in.
void SqliteWriter::ExpectToBeRecordedInto() {
  if (connection.Find<long long>("SELECT COALESCE(MAX(store_id), 0) FROM stores").value() >= numbersOfAStore) {
    throw Error("TS database '" + Name() +
                "' holds the records of other stores, and is for reading; expected a file of its own");
  }
}

void SqliteWriter::Insert(const EventRow& event) {
  connection.Run(
      "INSERT INTO events (session_id, execution_id, configuration_id, name, at) VALUES (?1, ?2, ?3, ?4, ?5)",
      event.session, event.execution, event.configuration, event.name, event.at);
  const long long key = sqlite3_last_insert_rowid(connection.Handle());
  int position = 0;
  for (const ParameterRow& parameter : event.parameters) {
    connection.Run(
        "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
        key, ++position, parameter.name, parameter.kind, parameter.text, parameter.number);
  }
}

long long SqliteWriter::Insert(const ExecutionRow& execution) {
  // Before the insertion, since a top-level execution is its own root.
  const long long key = NextKey("executions", "execution_id");
  connection.Run(
      "INSERT INTO executions (execution_id, guid, parent_id, root_id, session_id, version_id, node, description, "
      "kind, started_at) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
      key, execution.guid, execution.parent, execution.root.value_or(key), execution.session, execution.version,
      execution.node, execution.description, execution.kind, execution.startedAt);
  InsertStatus(key, execution.session, execution.code, execution.startedAt);
  return key;
}

bool SqliteWriter::AddStatus(const StatusRow& status) {
  const auto newest = connection.Find<int, std::string>(
      "SELECT s.code, s.at FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
      "WHERE x.execution_id = ?1 AND x.guid = ?2 ORDER BY s.status_id DESC LIMIT 1",
      status.execution, status.guid);
  if (newest && *newest != std::tuple(status.code, status.at)) {
    InsertStatus(status.execution, status.session, status.code, status.at);
  }
  return newest.has_value();
}

void SqliteWriter::InsertStatus(long long execution, long long session, int code, const std::string& at) {
  connection.Run("INSERT INTO statuses (execution_id, session_id, code, at) VALUES (?1, ?2, ?3, ?4)", execution,
                 session, code, at);
}

bool SqliteWriter::IsUsable() {
  ExpectFilesInPlace();
  return true;
}

// If the files were replaced, nobody would find what is written.
void SqliteWriter::ExpectFilesInPlace() const {
  if (files && !files->AreInPlace()) {
    files->SpareOthers();
    throw StoreReplaced(connection.Name());
  }
}

bool SqliteWriter::IsOutsideTransaction() { return sqlite3_get_autocommit(connection.Handle()) != 0; }

Writer::Contents SqliteWriter::FindTables() {
  const auto [tables, own] =
      connection.Find<int, int>("SELECT COUNT(*), COALESCE(SUM(name = 'ts_schema'), 0) FROM sqlite_master").value();
  return {tables != 0, own != 0, std::nullopt};
}

void SqliteWriter::BringUpSchema(int from) { BringUpSqlite(connection, from); }

}  // namespace Velora::Store
