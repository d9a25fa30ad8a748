#include "PostgreSqlVersion3.h"

#include "Schema.h"

namespace Quor::TolvaServices::Local {
namespace {

// What follows locks every table. Here they are taken in the order in which hosts do, as far as these have one: each is
// waited for too shortly to hold hosts up, and all are tried again.
constexpr const char* locks = R"(
    SET LOCAL lock_timeout = '200ms';
    DO $$
    DECLARE
      patience CONSTANT timestamptz := clock_timestamp() + interval '20 s';
    BEGIN
      LOOP
        BEGIN
          LOCK TABLE activity_versions, activities IN ACCESS EXCLUSIVE MODE;
          LOCK TABLE events, parameters, executions, statuses, configurations, registrations, sessions, seals, ts_schema
            IN SHARE ROW EXCLUSIVE MODE;
          RETURN;
        EXCEPTION WHEN lock_not_available THEN
          IF clock_timestamp() > patience THEN RAISE; END IF;
        END;
        PERFORM pg_sleep(0.05 + random() * 0.1);
      END LOOP;
    END $$;
    SET LOCAL lock_timeout = '30s';)";

// Times are counted in whole microseconds, since a cast would fail for a text that is no time, or of the year 0, and
// the whole view with it. The days are those of the Julian day number.
constexpr const char* durations = R"(
    CREATE FUNCTION microseconds(at text) RETURNS bigint LANGUAGE sql IMMUTABLE
    RETURN CASE WHEN at ~ ('^[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])'
                           || 'T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]\.[0-9]{6}Z$') THEN
      (((1461 * (CAST(substr(at, 1, 4) AS bigint) + 4800 + (CAST(substr(at, 6, 2) AS bigint) - 14) / 12)) / 4
       + (367 * (CAST(substr(at, 6, 2) AS bigint) - 2 - 12 * ((CAST(substr(at, 6, 2) AS bigint) - 14) / 12))) / 12
       - (3 * ((CAST(substr(at, 1, 4) AS bigint) + 4900 + (CAST(substr(at, 6, 2) AS bigint) - 14) / 12) / 100)) / 4
       + CAST(substr(at, 9, 2) AS bigint)) * 86400
       + CAST(substr(at, 12, 2) AS bigint) * 3600 + CAST(substr(at, 15, 2) AS bigint) * 60
       + CAST(substr(at, 18, 2) AS bigint)) * 1000000 + CAST(substr(at, 21, 6) AS bigint) END;
    CREATE OR REPLACE VIEW durations AS
       SELECT e.execution_id,
              (microseconds(s.at) - microseconds(e.started_at) + CASE WHEN s.at < e.started_at THEN -500 ELSE 500 END)
              / 1000 / CAST(1000 AS double precision) AS seconds
       FROM executions e
       CROSS JOIN LATERAL (SELECT at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s;)";

// A server that keeps to FIPS has no md5().
constexpr const char* digests = R"(
    CREATE FUNCTION text_digest(text text) RETURNS bytea LANGUAGE sql IMMUTABLE
    RETURN sha256(convert_to(text, 'UTF8'));
    DROP INDEX activities_once, activity_versions_once;
    CREATE UNIQUE INDEX activities_once ON activities (text_digest(name), text_digest(description));
    CREATE UNIQUE INDEX activity_versions_once ON activity_versions
      (activity_id, text_digest(name), text_digest(version), text_digest(description));)";

// The month of an event's key is the clock's, or that of the newest seal where the clock was ahead when that was made:
// a key below a sealed one would look as if it had been slipped in.
constexpr const char* keys = R"(
    CREATE FUNCTION sealed_number(kind text) RETURNS bigint LANGUAGE plpgsql STABLE AS $$
    BEGIN
      RETURN (SELECT CAST(substring(up_to FROM '"' || kind || '":([0-9]{1,16})[,}]') AS bigint)
              FROM seals ORDER BY seal_id DESC LIMIT 1);
    END $$;
    CREATE FUNCTION event_month() RETURNS bigint LANGUAGE sql
    RETURN GREATEST(CAST(to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYYMM') AS bigint),
                    sealed_number('event') / 10000000000);
    CREATE OR REPLACE FUNCTION next_event_id() RETURNS bigint LANGUAGE sql
    RETURN event_month() * 10000000000 + nextval('event_numbers');)";

// With its owner's rights, so that a host that may only add rows has its partitions made too. A partition is made on
// its own and then attached: made in place, it would wait for every reader, and every host for it. The tables that
// attaching locks are locked before, in the order in which hosts do; behind one that waits for a lock every host waits,
// so it waits shortly. ts_schema is what two that make partitions wait for: a role of hosts cannot lock that.
constexpr const char* partitions = R"(
    CREATE FUNCTION has_partitions(month bigint) RETURNS boolean LANGUAGE sql STABLE
    RETURN (SELECT COUNT(*) = 2 FROM pg_inherits i JOIN pg_class c ON c.oid = i.inhrelid
            WHERE (i.inhparent = CAST('events' AS regclass) AND c.relname = 'events_' || month)
               OR (i.inhparent = CAST('parameters' AS regclass) AND c.relname = 'parameters_' || month));
    CREATE FUNCTION attach_partitions(month bigint) RETURNS void LANGUAGE plpgsql AS $$
    DECLARE
      parent text;
      partition text;
    BEGIN
      LOCK TABLE ts_schema IN SHARE UPDATE EXCLUSIVE MODE;
      LOCK TABLE events, ONLY parameters, executions, configurations, sessions IN SHARE ROW EXCLUSIVE MODE;
      FOREACH parent IN ARRAY ARRAY['events', 'parameters'] LOOP
        partition := parent || '_' || month;
        CONTINUE WHEN EXISTS (SELECT FROM pg_inherits i JOIN pg_class c ON c.oid = i.inhrelid
                              WHERE i.inhparent = CAST(parent AS regclass) AND c.relname = partition);
        EXECUTE format('CREATE TABLE %1$I.%2$I (LIKE %1$I.%3$I INCLUDING ALL)', current_schema(), partition, parent);
        EXECUTE format('ALTER TABLE %1$I.%3$I ATTACH PARTITION %1$I.%2$I FOR VALUES FROM (%4$s) TO (%5$s)',
                       current_schema(), partition, parent, month * 10000000000, (month + 1) * 10000000000);
        EXECUTE format('CREATE TRIGGER %2$I BEFORE TRUNCATE ON %1$I.%3$I EXECUTE FUNCTION %1$I.refuse_change(%4$L)',
                       current_schema(), partition || '_no_truncate', partition, parent);
      END LOOP;
    END $$;
    CREATE OR REPLACE FUNCTION make_partition(month bigint) RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
    DECLARE
      patience CONSTANT timestamptz := clock_timestamp() + interval '3 s';
    BEGIN
      WHILE NOT has_partitions(month) LOOP
        BEGIN
          PERFORM attach_partitions(month);
        EXCEPTION WHEN lock_not_available THEN
          IF clock_timestamp() > patience THEN RAISE; END IF;
          PERFORM pg_sleep(0.02 + random() * 0.1);
        END;
      END LOOP;
    END $$;
    CREATE OR REPLACE FUNCTION make_partitions() RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
    DECLARE
      present CONSTANT bigint := event_month();
      month bigint;
    BEGIN
      PERFORM make_partition(present);
      FOR ahead IN 1..2 LOOP
        month := to_char(to_date(CAST(present AS text), 'YYYYMM') + make_interval(months => ahead), 'YYYYMM');
        CONTINUE WHEN has_partitions(month);
        BEGIN
          PERFORM attach_partitions(month);
        EXCEPTION WHEN lock_not_available OR duplicate_table THEN
          NULL;  -- there is time until then
        END;
      END LOOP;
    END $$;
    REVOKE EXECUTE ON FUNCTION attach_partitions(bigint) FROM PUBLIC;)";

constexpr const char* refusals = R"(
    CREATE FUNCTION refuse_row() RETURNS trigger LANGUAGE plpgsql AS $$
    BEGIN
      RAISE EXCEPTION 'rows of % have the next number, from 1 on, and none below those that are sealed', TG_ARGV[0];
    END $$;
    CREATE FUNCTION refuse_parameters() RETURNS trigger LANGUAGE plpgsql AS $$
    DECLARE
      lowest bigint;
      highest bigint;
    BEGIN
      SELECT MIN(event_id), MAX(event_id) INTO lowest, highest FROM added;
      IF lowest <= sealed_number('event') OR lowest <> highest
         OR lowest % 10000000000 <> currval('event_numbers') OR EXISTS (SELECT FROM added WHERE position < 1) THEN
        RAISE EXCEPTION 'parameters are only added together with their event';
      END IF;
      RETURN NULL;
    END $$;
    CREATE TRIGGER parameters_with_event AFTER INSERT ON parameters REFERENCING NEW TABLE AS added
    FOR EACH STATEMENT WHEN (NOT has_table_privilege(CAST('parameters' AS regclass), 'DELETE'))
    EXECUTE FUNCTION refuse_parameters();)";

struct Numbered {
  const char* table;
  const char* key;
  const char* kind;  // as seals call it
};

constexpr Numbered numbered[] = {
    {"ts_schema", "rowid", "schema"},
    {"sessions", "session_id", "session"},
    {"activities", "activity_id", "activity"},
    {"activity_versions", "version_id", "version"},
    {"registrations", "rowid", "registration"},
    {"configurations", "configuration_id", "configuration"},
    {"executions", "execution_id", "execution"},
    {"statuses", "status_id", "status"},
    {"events", "event_id", "event"},
    {"seals", "seal_id", "seal"},
};

// Whether a number is not the one that this session has taken last. One from far ahead, once sealed, would have all
// others refused; so would an event of a month to come.
std::string IsNotItsOwn(const Numbered& rows) {
  if (rows.table == std::string("events")) {
    return "NEW.event_id % 10000000000 <> currval(CAST('event_numbers' AS regclass)) OR "
           "NEW.event_id / 10000000000 > event_month()";
  }
  return std::string("NEW.") + rows.key + " <> currval(CAST('" + rows.table + "_" + rows.key + "_seq' AS regclass))";
}

// Who may delete rows copies sealed ones from another store, and is no host.
std::string RefuseSlippedIn(const Numbered& rows) {
  const std::string table = rows.table;
  const std::string key = std::string("NEW.") + rows.key;
  return "CREATE TRIGGER " + table + "_in_order BEFORE INSERT ON " + table + " FOR EACH ROW WHEN (" + key +
         " NOT BETWEEN 1 AND " + std::to_string(highestKey) + " OR (NOT has_table_privilege(CAST('" + table +
         "' AS regclass), 'DELETE') AND (" + key + " <= sealed_number('" + rows.kind + "') OR " + IsNotItsOwn(rows) +
         "))) EXECUTE FUNCTION refuse_row('" + table + "');";
}

// A function that names a table takes that of its own schema, whatever the session's path. One with its owner's rights
// makes a table where its owner would.
std::string TieTo(const std::string& schema) {
  std::string statements;
  for (const char* function : {"sealed_number(text)", "refuse_parameters()", "attach_partitions(bigint)",
                               "make_partition(bigint)", "make_partitions()"}) {
    statements += std::string("ALTER FUNCTION ") + function + " SET search_path = " + schema + ", pg_temp;";
  }
  return statements +
         "ALTER FUNCTION attach_partitions(bigint) SET lock_timeout = '100ms';"
         "ALTER FUNCTION attach_partitions(bigint) SET default_tablespace = '';";
}

}  // namespace

std::string PostgreSqlVersion3(const std::string& schema) {
  std::string statements = std::string(locks) + durations + digests + keys + partitions + refusals;
  for (const Numbered& rows : numbered) {
    statements += RefuseSlippedIn(rows);
  }
  return statements + TieTo(schema);
}

}  // namespace Quor::TolvaServices::Local
