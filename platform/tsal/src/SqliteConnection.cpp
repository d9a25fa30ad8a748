#include "SqliteConnection.h"

#include "SqliteSchema.h"
#include "Statement.h"

#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/System.h>

#include <soci/sqlite3/soci-sqlite3.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

// The byte of the file of shared memory that SQLite locks for the one writer of its write-ahead log.
constexpr unsigned writeLock = 120;

constexpr const char* rightsExpected =
    "; expected a folder that is there, and the right to write the file and that folder, since a log is kept beside it";

sqlite_api::sqlite3* HandleOf(soci::session& sql) {
  return static_cast<soci::sqlite3_session_backend*>(sql.get_backend())->conn_;
}

// SOCI takes a path within a text of keys and values, where one with quotes and blanks ends early and names another
// file. So the file is opened here, and put in the place of the nameless database that SOCI opened.
void Open(soci::session& sql, const std::string& database, Opening opening) {
  using sqlite_api::sqlite3;
  if (const std::string kind = Velora::System::KindOfNoFile(database); !kind.empty()) {  // SQLite would wait for a FIFO
    throw TsError("TS database '" + database + "' is " + kind + "; expected a regular file");
  }
  sql.open(soci::sqlite3, ":memory:");
  if (opening == Opening::MakesStore) {
    // Made here, since SQLite lets everybody read what it makes; its other files get the mode of this one.
    Velora::System::MakeOwnFile(database);
  } else if (std::error_code unknown; !std::filesystem::exists(database, unknown) && !unknown) {
    throw StoreReplaced(database);
  }
  sqlite3* handle = nullptr;
  const int create = opening == Opening::MakesStore ? SQLITE_OPEN_CREATE : 0;
  const int result = sqlite_api::sqlite3_open_v2(database.c_str(), &handle, SQLITE_OPEN_READWRITE | create, nullptr);
  std::unique_ptr<sqlite3, decltype(&sqlite_api::sqlite3_close)> opened(handle, &sqlite_api::sqlite3_close);
  if (result == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  if (result != SQLITE_OK) {
    throw NotReachable("TS database '" + database + "' cannot be opened: " + sqlite_api::sqlite3_errmsg(opened.get()) +
                       rightsExpected);
  }
  if (sqlite_api::sqlite3_db_readonly(opened.get(), "main") != 0) {
    throw TsError("TS database '" + database + "' can only be read; expected a file that may be written");
  }
  auto* const backend = static_cast<soci::sqlite3_session_backend*>(sql.get_backend());
  opened.reset(std::exchange(backend->conn_, opened.release()));
}

int CodeOf(const soci::soci_error& error) {
  const auto* const sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error);
  return sqlite == nullptr ? SQLITE_ERROR : sqlite->result() & 0xFF;
}

const char* ExpectedAfter(int code) {
  switch (code) {
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
      return rightsExpected;
    case SQLITE_NOTADB:
      return "; expected a file of SQLite, or none yet";
    default:
      return "";
  }
}

bool IsBusy(const soci::soci_error& error) { return CodeOf(error) == SQLITE_BUSY; }

// To the statement's end, past its one row: there the change is committed.
std::string AskForWriteAheadLog(soci::session& sql) {
  std::string mode;
  soci::statement statement(sql);
  statement.exchange(soci::into(mode));
  statement.alloc();
  statement.prepare("PRAGMA journal_mode = WAL");
  statement.define_and_bind();
  statement.execute(true);
  statement.fetch();
  return mode;
}

// Turning the write-ahead log on is the one statement that fails at once when another process is about to do the same.
void TurnOnWriteAheadLog(soci::session& sql) {
  const auto deadline = std::chrono::steady_clock::now() + SqliteWaiting::longest;
  for (;;) {
    try {
      if (const std::string mode = AskForWriteAheadLog(sql); mode != "wal") {
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

SqliteConnection::SqliteConnection(const std::string& file, Opening opening) : Connection(file, opening) {
  Open(Sql(), file, opening);
  try {
    Configure();
    StoredVersion();  // asked first: nothing is changed in a file that is none of ours
    if (opening == Opening::Tries) {
      return;
    }
    TurnOnWriteAheadLog(Sql());
    if (StoredVersion() != schemaVersion) {
      BringUp();
    }
    files.emplace(HandleOf(Sql()), name);
  } catch (const soci::soci_error& reason) {
    throw ErrorOf(reason);
  }
}

void SqliteConnection::Configure() {
  waiting.Serve(HandleOf(Sql()));
  Execute(Sql(), "PRAGMA foreign_keys = ON");
  Execute(Sql(), "PRAGMA synchronous = FULL");  // a commit is on the disk when it returns
}

// As a writer, since a reader that turns into one halfway fails at once when another has written meanwhile, however
// long it would wait.
void SqliteConnection::Begin() {
  waiting.TakeTurn(name);
  Execute(Sql(), "BEGIN IMMEDIATE");
}

// Looked at before, since what raises is to have stored nothing; and after, since what is acknowledged is to be found.
void SqliteConnection::Commit() {
  ExpectFilesInPlace();
  Execute(Sql(), "COMMIT");
  waiting.EndTurn();
  ExpectFilesInPlace();
}

void SqliteConnection::Rollback() {
  Connection::Rollback();
  waiting.EndTurn();
}

long long SqliteConnection::NextKey(const std::string& table, const std::string& column) {
  long long key = 0;
  Execute(Sql(), "SELECT COALESCE(MAX(" + column + "), 0) + 1 FROM " + table, soci::into(key));
  return key;
}

void SqliteConnection::Insert(const Types::InstrumentEvent& event, long long session,
                              std::optional<long long> execution, std::optional<long long> configuration) {
  if (!events) {
    events.emplace(Sql());
  }
  events->Insert(event, session, execution, configuration);
}

bool SqliteConnection::IsUsable() {
  ExpectFilesInPlace();
  return true;
}

// Nobody would find what is written elsewhere.
void SqliteConnection::ExpectFilesInPlace() const {
  if (files && !files->AreInPlace()) {
    files->SpareOthers();
    throw StoreReplaced(name);
  }
}

bool SqliteConnection::IsOutsideTransaction() { return sqlite_api::sqlite3_get_autocommit(HandleOf(Sql())) != 0; }

TsError SqliteConnection::ErrorOf(const soci::soci_error& reason) {
  if (IsBusy(reason)) {
    return TsError("TS database '" + name + "' was being written by " +
                   Velora::System::LockerOf(SharedMemoryOf(HandleOf(Sql())), writeLock) + " for more than " +
                   std::to_string(SqliteWaiting::longest.count()) +
                   " seconds; expected it to finish: " + reason.get_error_message());
  }
  // Without the statement and its values, which can be as long as what was to be recorded.
  return TsError("TS database '" + name + "': " + reason.get_error_message() + ExpectedAfter(CodeOf(reason)));
}

Connection::Contents SqliteConnection::FindTables() {
  int tables = 0;
  int own = 0;
  Execute(Sql(), "SELECT COUNT(*), COALESCE(SUM(name = 'ts_schema'), 0) FROM sqlite_master", soci::into(tables),
          soci::into(own));
  return {tables != 0, own != 0};
}

void SqliteConnection::BringUpSchema(int from) { BringUpSqliteSchema(Sql(), from); }

}  // namespace Quor::TolvaServices::Local
