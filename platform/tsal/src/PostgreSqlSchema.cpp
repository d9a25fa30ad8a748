#include "PostgreSqlSchema.h"

#include "PostgreSqlVersion3.h"
#include "Schema.h"
#include "Statement.h"
#include "Views.h"

#include <soci/soci.h>

#include <regex>
#include <string>

namespace Quor::TolvaServices::Local {
namespace {

// The tables, columns and views are those of a file of SQLite; docs/postgresql.md says what differs. KEY stands for
// what numbers rows, and TEXT for texts that sort by their bytes, as they do there.
constexpr const char* tables[] = {
    R"(CREATE TABLE ts_schema (
         rowid      KEY,
         version    BIGINT NOT NULL,
         created_at TEXT NOT NULL))",

    R"(CREATE TABLE sessions (
         session_id KEY,
         guid       TEXT NOT NULL UNIQUE,
         instrument TEXT NOT NULL,
         host       TEXT NOT NULL,
         began_at   TEXT NOT NULL,
         text1      TEXT NOT NULL,
         text2      TEXT NOT NULL,
         text3      TEXT NOT NULL))",

    // Texts of any length are unique by their hashes: an index takes no more than a third of a page.
    R"(CREATE TABLE activities (
         activity_id KEY,
         guid        TEXT NOT NULL UNIQUE,
         name        TEXT NOT NULL,
         description TEXT NOT NULL))",
    "CREATE UNIQUE INDEX activities_once ON activities (md5(name), md5(description))",

    R"(CREATE TABLE activity_versions (
         version_id  KEY,
         guid        TEXT NOT NULL UNIQUE,
         activity_id BIGINT NOT NULL REFERENCES activities,
         name        TEXT NOT NULL,
         version     TEXT NOT NULL,
         description TEXT NOT NULL))",
    R"(CREATE UNIQUE INDEX activity_versions_once ON activity_versions
         (activity_id, md5(name), md5(version), md5(description)))",

    R"(CREATE TABLE registrations (
         rowid         KEY,
         session_id    BIGINT NOT NULL REFERENCES sessions,
         version_id    BIGINT NOT NULL REFERENCES activity_versions,
         file          TEXT NOT NULL,
         registered_at TEXT NOT NULL))",
    "CREATE INDEX registrations_by_session ON registrations (session_id)",

    R"(CREATE TABLE configurations (
         configuration_id   KEY,
         guid               TEXT NOT NULL UNIQUE,
         session_id         BIGINT NOT NULL REFERENCES sessions,
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
         execution_id KEY,
         guid         TEXT NOT NULL UNIQUE,
         parent_id    BIGINT REFERENCES executions,
         root_id      BIGINT NOT NULL REFERENCES executions,
         session_id   BIGINT NOT NULL REFERENCES sessions,
         version_id   BIGINT REFERENCES activity_versions,
         node         TEXT NOT NULL,
         description  TEXT NOT NULL,
         kind         BIGINT NOT NULL,
         started_at   TEXT NOT NULL))",
    "CREATE INDEX executions_by_parent ON executions (parent_id, started_at)",
    "CREATE INDEX executions_by_root ON executions (root_id)",
    "CREATE INDEX executions_by_time ON executions (started_at)",

    R"(CREATE TABLE statuses (
         status_id    KEY,
         execution_id BIGINT NOT NULL REFERENCES executions,
         session_id   BIGINT NOT NULL REFERENCES sessions,
         code         BIGINT NOT NULL,
         at           TEXT NOT NULL))",
    "CREATE INDEX statuses_by_execution ON statuses (execution_id, status_id)",

    // An event's key begins with the month of its saving, 202611, by which events and parameters are partitioned. Ten
    // digits that count upwards follow: it stays below 2^53, up to which every program reads a number exactly.
    "CREATE SEQUENCE event_numbers MAXVALUE 9999999999 CYCLE",
    R"(CREATE FUNCTION next_event_id() RETURNS bigint LANGUAGE sql AS $$
         SELECT CAST(to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYYMM') AS bigint) * 10000000000
                + nextval('event_numbers') $$)",
    R"(CREATE TABLE events (
         event_id         BIGINT PRIMARY KEY DEFAULT next_event_id(),
         session_id       BIGINT NOT NULL REFERENCES sessions,
         execution_id     BIGINT REFERENCES executions,
         configuration_id BIGINT REFERENCES configurations,
         name             TEXT NOT NULL,
         at               TEXT NOT NULL) PARTITION BY RANGE (event_id))",
    "CREATE INDEX events_by_execution ON events (execution_id, event_id)",
    "CREATE INDEX events_by_time ON events (at)",

    R"(CREATE TABLE parameters (
         event_id     BIGINT NOT NULL REFERENCES events,
         position     BIGINT NOT NULL,
         name         TEXT NOT NULL,
         kind         TEXT NOT NULL,
         value_text   TEXT,
         value_number DOUBLE PRECISION,
         PRIMARY KEY (event_id, position)) PARTITION BY RANGE (event_id))",

    R"(CREATE TABLE seals (
         seal_id        KEY,
         run            TEXT,
         sealed_at      TEXT NOT NULL,
         up_to          TEXT NOT NULL,
         counts         TEXT NOT NULL,
         content_hash   TEXT NOT NULL,
         previous_hash  TEXT NOT NULL,
         schema_version BIGINT NOT NULL,
         tool_version   TEXT NOT NULL,
         seal_hash      TEXT NOT NULL))",
    "CREATE INDEX seals_by_run ON seals (run, seal_id)",

    // LATERAL has the newest status looked up for each execution that is asked for; the planner would rather read all.
    R"(CREATE VIEW execution_states AS
       SELECT e.execution_id, e.guid, e.parent_id, e.root_id, e.session_id, n.instrument,
              v.name AS activity_version, e.node, e.description, e.kind, e.started_at,
              s.code AS status, s.at AS status_at
       FROM executions e
       JOIN sessions n ON n.session_id = e.session_id
       CROSS JOIN LATERAL (SELECT code, at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s
       LEFT JOIN activity_versions v ON v.version_id = e.version_id)",
    R"(CREATE VIEW durations AS
       SELECT e.execution_id, CAST(round(EXTRACT(EPOCH FROM CAST(s.at AS timestamptz) -
              CAST(e.started_at AS timestamptz)), 3) AS double precision) AS seconds
       FROM executions e
       CROSS JOIN LATERAL (SELECT at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s)",
    Views::unfinished,
    Views::readings,
};

// With its owner's rights, so that a host that may only add rows has its partitions made too. A partition is made on
// its own and then attached: made in place, it would wait for every reader, and every host for it.
constexpr const char* partitions[] = {
    R"(CREATE FUNCTION make_partition(month bigint) RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
       DECLARE
         parent text;
         partition text;
       BEGIN
         PERFORM pg_advisory_xact_lock(21587, 3);
         FOREACH parent IN ARRAY ARRAY['events', 'parameters'] LOOP
           partition := parent || '_' || CAST(month AS text);
           CONTINUE WHEN to_regclass(partition) IS NOT NULL;
           EXECUTE pg_catalog.format('CREATE TABLE %I (LIKE %I INCLUDING ALL)', partition, parent);
           EXECUTE pg_catalog.format('ALTER TABLE %I ATTACH PARTITION %I FOR VALUES FROM (%s) TO (%s)', parent, partition,
                          month * 10000000000, (month + 1) * 10000000000);
           EXECUTE pg_catalog.format('CREATE TRIGGER %I BEFORE TRUNCATE ON %I EXECUTE FUNCTION refuse_change(%L)',
                          partition || '_no_truncate', partition, parent);
         END LOOP;
       END $$;)",
    // The next months' can wait when somebody is in the way; this month's cannot.
    R"(CREATE FUNCTION make_partitions() RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
       DECLARE
         month text;
       BEGIN
         FOR ahead IN 0..2 LOOP
           month := to_char(now() AT TIME ZONE 'UTC' + make_interval(months => ahead), 'YYYYMM');
           CONTINUE WHEN to_regclass('parameters_' || month) IS NOT NULL;
           BEGIN
             PERFORM make_partition(CAST(month AS bigint));
           EXCEPTION WHEN lock_not_available THEN
             IF ahead = 0 THEN RAISE; END IF;
           END;
         END LOOP;
       END $$;)",
    // For what comes out of a file of SQLite, where an event's key has no month.
    "CREATE TABLE events_copied PARTITION OF events FOR VALUES FROM (MINVALUE) TO (2000010000000000);",
    "CREATE TABLE parameters_copied PARTITION OF parameters FOR VALUES FROM (MINVALUE) TO (2000010000000000);",
};

std::string InItsDialect(const char* statement) {
  static const std::regex text(R"(\bTEXT\b)");
  static const std::regex key(R"(\bKEY,)");
  return std::regex_replace(std::regex_replace(statement, text, "TEXT COLLATE \"C\""), key,
                            "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY,");
}

std::string NoTruncate(const std::string& table, const std::string& of) {
  return "CREATE TRIGGER " + table + "_no_truncate BEFORE TRUNCATE ON " + table + " EXECUTE FUNCTION refuse_change('" +
         of + "');";
}

std::string NoChange(const std::string& table) {
  return "CREATE TRIGGER " + table + "_no_change BEFORE UPDATE OR DELETE ON " + table +
         " FOR EACH ROW EXECUTE FUNCTION refuse_change('" + table + "');" + NoTruncate(table, table);
}

// A function with its owner's rights takes no table but those of its own schema, and none of what another may have made
// there under the name of PostgreSQL's own. It waits less for the three months together than a statement may take.
std::string TieTo(const std::string& schema) {
  const std::string tie = " SET search_path = " + schema + ", pg_temp;";
  return "REVOKE EXECUTE ON FUNCTION make_partition(bigint), make_partitions() FROM PUBLIC;"
         "ALTER FUNCTION next_event_id()" +
         tie + "ALTER FUNCTION make_partition(bigint)" + tie + "ALTER FUNCTION make_partitions()" + tie +
         "ALTER FUNCTION make_partitions() SET lock_timeout = '1s';";
}

std::string Version2(const std::string& schema) {
  std::string statements;
  for (const char* statement : tables) {
    statements += InItsDialect(statement);
    statements += ';';
  }
  statements += std::string("CREATE FUNCTION refuse_change() RETURNS trigger LANGUAGE plpgsql AS $$") + refusal + "$$;";
  for (const char* table : recordedTables) {
    statements += NoChange(table);
  }
  for (const char* statement : partitions) {
    statements += statement;
  }
  statements += TieTo(schema) + NoTruncate("events_copied", "events") + NoTruncate("parameters_copied", "parameters");
  // Here, so that of many hosts that begin at once none has to wait for another that makes them.
  return statements + "SELECT make_partitions();";
}

}  // namespace

void BringUpPostgreSqlSchema(soci::session& sql, int from, int to) {
  std::string schema;
  Execute(sql, "SELECT quote_ident(current_schema())", soci::into(schema));
  std::string statements = from < 2 ? Version2(schema) : "";
  if (from < 3 && to >= 3) {
    statements += PostgreSqlVersion3(schema);
  }
  Execute(sql, statements);  // at once: the server may be far away
  AddVersion(sql, to);
}

}  // namespace Quor::TolvaServices::Local
