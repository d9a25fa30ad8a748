#include "SqliteSchema.h"

#include "Schema.h"
#include "Statement.h"
#include "Views.h"

#include <soci/soci.h>

#include <string>

namespace Quor::TolvaServices::Local {
namespace {

// Described in docs/local-ts.md, table by table; keep the two together.
constexpr const char* version1[] = {
    R"(CREATE TABLE ts_schema (
         version    INTEGER NOT NULL,
         created_at TEXT NOT NULL))",

    R"(CREATE TABLE sessions (
         session_id INTEGER PRIMARY KEY,
         guid       TEXT NOT NULL UNIQUE,
         instrument TEXT NOT NULL,
         host       TEXT NOT NULL,
         began_at   TEXT NOT NULL,
         text1      TEXT NOT NULL,
         text2      TEXT NOT NULL,
         text3      TEXT NOT NULL))",

    R"(CREATE TABLE activities (
         activity_id INTEGER PRIMARY KEY,
         guid        TEXT NOT NULL UNIQUE,
         name        TEXT NOT NULL,
         description TEXT NOT NULL,
         UNIQUE (name, description)))",

    R"(CREATE TABLE activity_versions (
         version_id  INTEGER PRIMARY KEY,
         guid        TEXT NOT NULL UNIQUE,
         activity_id INTEGER NOT NULL REFERENCES activities,
         name        TEXT NOT NULL,
         version     TEXT NOT NULL,
         description TEXT NOT NULL,
         UNIQUE (activity_id, name, version, description)))",

    R"(CREATE TABLE registrations (
         session_id    INTEGER NOT NULL REFERENCES sessions,
         version_id    INTEGER NOT NULL REFERENCES activity_versions,
         file          TEXT NOT NULL,
         registered_at TEXT NOT NULL))",
    "CREATE INDEX registrations_by_session ON registrations (session_id)",

    R"(CREATE TABLE configurations (
         configuration_id   INTEGER PRIMARY KEY,
         guid               TEXT NOT NULL UNIQUE,
         session_id         INTEGER NOT NULL REFERENCES sessions,
         saved_at           TEXT NOT NULL,
         configuration_text TEXT NOT NULL,
         text2              TEXT NOT NULL,
         vendor_name        TEXT NOT NULL,
         host_name          TEXT NOT NULL,
         option_text        TEXT NOT NULL,
         instrument_class   TEXT NOT NULL,
         model_name         TEXT NOT NULL,
         text8              TEXT NOT NULL,
         text9              TEXT NOT NULL))",
    "CREATE INDEX configurations_by_time ON configurations (saved_at)",

    R"(CREATE TABLE executions (
         execution_id INTEGER PRIMARY KEY,
         guid         TEXT NOT NULL UNIQUE,
         parent_id    INTEGER REFERENCES executions,
         root_id      INTEGER NOT NULL REFERENCES executions,
         session_id   INTEGER NOT NULL REFERENCES sessions,
         version_id   INTEGER REFERENCES activity_versions,
         node         TEXT NOT NULL,
         description  TEXT NOT NULL,
         kind         INTEGER NOT NULL,
         started_at   TEXT NOT NULL))",
    "CREATE INDEX executions_by_parent ON executions (parent_id, started_at)",
    "CREATE INDEX executions_by_root ON executions (root_id)",
    "CREATE INDEX executions_by_time ON executions (started_at)",

    R"(CREATE TABLE statuses (
         status_id    INTEGER PRIMARY KEY,
         execution_id INTEGER NOT NULL REFERENCES executions,
         session_id   INTEGER NOT NULL REFERENCES sessions,
         code         INTEGER NOT NULL,
         at           TEXT NOT NULL))",
    "CREATE INDEX statuses_by_execution ON statuses (execution_id, status_id)",

    R"(CREATE TABLE events (
         event_id         INTEGER PRIMARY KEY,
         session_id       INTEGER NOT NULL REFERENCES sessions,
         execution_id     INTEGER REFERENCES executions,
         configuration_id INTEGER REFERENCES configurations,
         name             TEXT NOT NULL,
         at               TEXT NOT NULL))",
    "CREATE INDEX events_by_execution ON events (execution_id, event_id)",
    "CREATE INDEX events_by_time ON events (at)",

    R"(CREATE TABLE parameters (
         event_id     INTEGER NOT NULL REFERENCES events,
         position     INTEGER NOT NULL,
         name         TEXT NOT NULL,
         kind         TEXT NOT NULL,
         value_text   TEXT,
         value_number REAL,
         PRIMARY KEY (event_id, position)) WITHOUT ROWID)",

    R"(CREATE VIEW execution_states AS
       SELECT e.execution_id, e.guid, e.parent_id, e.root_id, e.session_id, n.instrument,
              v.name AS activity_version, e.node, e.description, e.kind, e.started_at,
              s.code AS status, s.at AS status_at
       FROM executions e
       JOIN sessions n ON n.session_id = e.session_id
       JOIN statuses s ON s.status_id = (SELECT MAX(status_id) FROM statuses WHERE execution_id = e.execution_id)
       LEFT JOIN activity_versions v ON v.version_id = e.version_id)",
    Views::unfinished,
    Views::readings,
};

constexpr const char* version2[] = {
    R"(CREATE TABLE seals (
         seal_id        INTEGER PRIMARY KEY,
         run            TEXT,
         sealed_at      TEXT NOT NULL,
         up_to          TEXT NOT NULL,
         counts         TEXT NOT NULL,
         content_hash   TEXT NOT NULL,
         previous_hash  TEXT NOT NULL,
         schema_version INTEGER NOT NULL,
         tool_version   TEXT NOT NULL,
         seal_hash      TEXT NOT NULL))",
    "CREATE INDEX seals_by_run ON seals (run, seal_id)",

    R"(CREATE VIEW durations AS
       SELECT execution_id, round((julianday(status_at) - julianday(started_at)) * 86400, 3) AS seconds
       FROM execution_states)",
};

// Whole microseconds, rounded to milliseconds as on a server; a text that is no time has no duration. The seconds are
// taken without their fraction, which strftime rounds, and without the hour 24, which it takes.
#define TIME \
  "'[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:[0-9][0-9].[0-9][0-9][0-9][0-9][0-9][0-9]Z'"
constexpr const char* version3[] = {
    "DROP VIEW durations",
    "CREATE VIEW durations AS\n"
    "       SELECT execution_id, CASE WHEN started_at GLOB " TIME " AND status_at GLOB " TIME
    R"(
              AND max(substr(started_at, 12, 2), substr(status_at, 12, 2)) < '24' THEN
              ((strftime('%s', substr(status_at, 1, 19)) - strftime('%s', substr(started_at, 1, 19))) * 1000000
               + substr(status_at, 21, 6) - substr(started_at, 21, 6)
               + CASE WHEN status_at < started_at THEN -500 ELSE 500 END) / 1000 / 1000.0 END AS seconds
       FROM execution_states)",
};
#undef TIME

/// A table whose rows stay as they are.
struct Recorded {
  const char* table;
  const char* key;
  const char* inTheWay;  // the rows whose place a new one would take; its key is -1 until SQLite has chosen one
};

constexpr Recorded recorded[] = {
    {"ts_schema", "rowid", "rowid = NEW.rowid AND NEW.rowid > 0"},
    {"sessions", "session_id", "(session_id = NEW.session_id AND NEW.session_id > 0) OR guid = NEW.guid"},
    {"activities", "activity_id",
     "(activity_id = NEW.activity_id AND NEW.activity_id > 0) OR guid = NEW.guid OR "
     "(name = NEW.name AND description = NEW.description)"},
    {"activity_versions", "version_id",
     "(version_id = NEW.version_id AND NEW.version_id > 0) OR guid = NEW.guid OR (activity_id = NEW.activity_id AND "
     "name = NEW.name AND version = NEW.version AND description = NEW.description)"},
    {"registrations", "rowid", "rowid = NEW.rowid AND NEW.rowid > 0"},
    {"configurations", "configuration_id",
     "(configuration_id = NEW.configuration_id AND NEW.configuration_id > 0) OR guid = NEW.guid"},
    {"executions", "execution_id", "(execution_id = NEW.execution_id AND NEW.execution_id > 0) OR guid = NEW.guid"},
    {"statuses", "status_id", "status_id = NEW.status_id AND NEW.status_id > 0"},
    {"events", "event_id", "event_id = NEW.event_id AND NEW.event_id > 0"},
    {"parameters", "position", "event_id = NEW.event_id AND position = NEW.position"},
    {"seals", "seal_id", "seal_id = NEW.seal_id AND NEW.seal_id > 0"},
};

template <std::size_t count>
void ExecuteAll(soci::session& sql, const char* const (&statements)[count]) {
  for (const char* statement : statements) {
    Execute(sql, statement);
  }
}

void AddTrigger(soci::session& sql, const std::string& table, const char* action, const std::string& when) {
  Execute(sql, "CREATE TRIGGER " + table + "_no_" + action + " BEFORE " + when +
                   " BEGIN SELECT RAISE(ABORT, 'rows of " + table + " are only ever added'); END");
}

// The third is for INSERT OR REPLACE, which deletes the rows that are in its way and asks no trigger about it.
void AddTriggers(soci::session& sql, const std::string& table, const std::string& inTheWay) {
  AddTrigger(sql, table, "update", "UPDATE ON " + table);
  AddTrigger(sql, table, "delete", "DELETE ON " + table);
  AddTrigger(sql, table, "replace",
             "INSERT ON " + table + " WHEN EXISTS (SELECT 1 FROM " + table + " WHERE " + inTheWay + ")");
}

// Asked after the insertion, since SQLite may choose the key during it. Only a position can be no whole number.
void AddNumberTrigger(soci::session& sql, const std::string& table, const std::string& key) {
  Execute(sql, "CREATE TRIGGER " + table + "_numbers AFTER INSERT ON " + table + " WHEN NEW." + key +
                   " NOT BETWEEN 1 AND " + std::to_string(highestKey) + " OR typeof(NEW." + key +
                   ") <> 'integer' BEGIN SELECT RAISE(ABORT, 'rows of " + table + " are numbered from 1 to " +
                   std::to_string(highestKey) + "'); END");
}

}  // namespace

void BringUpSqliteSchema(soci::session& sql, int from, int to) {
  if (from < 1 && to >= 1) {
    ExecuteAll(sql, version1);
  }
  if (from < 2 && to >= 2) {
    ExecuteAll(sql, version2);
    for (const auto& [table, key, inTheWay] : recorded) {
      AddTriggers(sql, table, inTheWay);
    }
  }
  if (from < 3 && to >= 3) {
    ExecuteAll(sql, version3);
    for (const auto& [table, key, inTheWay] : recorded) {
      AddNumberTrigger(sql, table, key);
    }
  }
  AddVersion(sql, to);
}

}  // namespace Quor::TolvaServices::Local
