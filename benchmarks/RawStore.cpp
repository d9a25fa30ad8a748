#include "RawStore.h"

#include <sqlite3.h>

#include <array>
#include <stdexcept>

namespace {

struct Row {
  const char* name;
  const char* kind;
  const char* text;
  double number;
};
constexpr std::array<Row, 4> parameters{{{"Good", "bool", nullptr, 1},
                                         {"TiltAngle", "double", nullptr, -59.98},
                                         {"Shot", "int", nullptr, 17},
                                         {"Note", "text", "after focusing", 0}}};

}  // namespace

RawStore::RawStore(const std::string& path) {
  if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK ||
      sqlite3_exec(database, "PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON; PRAGMA busy_timeout = 30000",
                   nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(path + ": " + sqlite3_errmsg(database));
  }
  begin = Prepare("BEGIN IMMEDIATE");
  insertEvent =
      Prepare("INSERT INTO events (session_id, execution_id, configuration_id, name, at) VALUES (1, ?, ?, ?, ?)");
  insertParameter = Prepare(
      "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) VALUES (?, ?, ?, ?, ?, ?)");
  commit = Prepare("COMMIT");
  BindEvent();
}

RawStore::~RawStore() {
  for (sqlite3_stmt* const statement : {begin, insertEvent, insertParameter, commit}) {
    sqlite3_finalize(statement);
  }
  sqlite3_close(database);
}

void RawStore::SaveEvent() {
  Run(begin);
  Run(insertEvent);
  for (int position = 1; position <= 4; ++position) {
    InsertParameter(position);
  }
  Run(commit);
}

void RawStore::SaveEventRowByRow() {
  Run(insertEvent);
  for (int position = 1; position <= 4; ++position) {
    InsertParameter(position);
  }
}

void RawStore::AddEvents(int count) {
  Run(begin);
  for (; count > 0; --count) {
    SaveEventRowByRow();
  }
  Run(commit);
}

void RawStore::BindEvent() {
  sqlite3_stmt* const newest =
      Prepare("SELECT (SELECT MAX(execution_id) FROM executions), (SELECT MAX(configuration_id) FROM configurations)");
  sqlite3_step(newest);
  sqlite3_bind_value(insertEvent, 1, sqlite3_column_value(newest, 0));
  sqlite3_bind_value(insertEvent, 2, sqlite3_column_value(newest, 1));
  sqlite3_finalize(newest);
  sqlite3_bind_text(insertEvent, 3, "Exposure", -1, SQLITE_STATIC);
  sqlite3_bind_text(insertEvent, 4, "2026-11-25T02:09:21.123456Z", -1, SQLITE_STATIC);
}

void RawStore::InsertParameter(int position) {
  const Row& row = parameters[static_cast<std::size_t>(position - 1)];
  if (position == 1) {
    sqlite3_bind_int64(insertParameter, 1, sqlite3_last_insert_rowid(database));
  }
  sqlite3_bind_int(insertParameter, 2, position);
  sqlite3_bind_text(insertParameter, 3, row.name, -1, SQLITE_STATIC);
  sqlite3_bind_text(insertParameter, 4, row.kind, -1, SQLITE_STATIC);
  if (row.text != nullptr) {
    sqlite3_bind_text(insertParameter, 5, row.text, -1, SQLITE_STATIC);
    sqlite3_bind_null(insertParameter, 6);
  } else {
    sqlite3_bind_null(insertParameter, 5);
    sqlite3_bind_double(insertParameter, 6, row.number);
  }
  Run(insertParameter);
}

void RawStore::Run(sqlite3_stmt* statement) {
  if (sqlite3_step(statement) != SQLITE_DONE) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  sqlite3_reset(statement);
}

sqlite3_stmt* RawStore::Prepare(const char* text) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(database, text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  return statement;
}
