#include "store/schema/ServerStatements.h"

#include "store/schema/Running.h"

namespace Velora::Store::Server {

namespace Version2 {

// The key of an event begins with the month of its saving, such as 202611, by which events and parameters are
// partitioned. Ten digits that count upwards follow. So keys stay below 2^53, up to which every program reads numbers
// exactly.
const char* const eventNumbers = R"(
    CREATE SEQUENCE event_numbers MAXVALUE 9999999999 CYCLE;
    CREATE FUNCTION next_event_id() RETURNS bigint LANGUAGE sql AS $$
         SELECT CAST(to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYYMM') AS bigint) * 10000000000
                + nextval('event_numbers') $$;
    ALTER FUNCTION next_event_id() SET search_path = {schema}, pg_temp)";

const char* const refuseChange = R"(
    CREATE FUNCTION refuse_change() RETURNS trigger LANGUAGE plpgsql AS
    $$ BEGIN RAISE EXCEPTION 'rows of % are only ever added', TG_ARGV[0]; END $$)";

// The function has the rights of its owner, so that a host that may only add rows can make partitions. A partition is
// made as a table and then attached: made in place, it would wait for every reader, and every host would wait for it.
// The partitions of later months can wait if a lock is not free; that of this month cannot. Rows that were copied from
// an SQLite file have keys without a month. The first partitions are made here, so that hosts that begin at the same
// time need not wait for the one that makes them.
const char* const partitions = R"(
    CREATE FUNCTION make_partition(month bigint) RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
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
       END $$;
    CREATE FUNCTION make_partitions() RETURNS void LANGUAGE plpgsql SECURITY DEFINER AS $$
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
       END $$;
    REVOKE EXECUTE ON FUNCTION make_partition(bigint), make_partitions() FROM PUBLIC;
    ALTER FUNCTION make_partition(bigint) SET search_path = {schema}, pg_temp;
    ALTER FUNCTION make_partitions() SET search_path = {schema}, pg_temp;
    ALTER FUNCTION make_partitions() SET lock_timeout = '1s';
    CREATE TABLE events_copied PARTITION OF events FOR VALUES FROM (MINVALUE) TO (2000010000000000);
    CREATE TABLE parameters_copied PARTITION OF parameters FOR VALUES FROM (MINVALUE) TO (2000010000000000);
    CREATE TRIGGER events_copied_no_truncate BEFORE TRUNCATE ON events_copied EXECUTE FUNCTION refuse_change('events');
    CREATE TRIGGER parameters_copied_no_truncate BEFORE TRUNCATE ON parameters_copied
    EXECUTE FUNCTION refuse_change('parameters');
    SELECT make_partitions())";

}  // namespace Version2

namespace Version3 {

// The other statements lock every table. Here the tables are locked in the order in which hosts lock them, if they have
// one; a number of a sequence is locked like a row. Each wait is too short to delay hosts; after a failure, all locks
// are tried again. Numbers end where those of other stores begin.
const char* const locks = R"(
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
          ALTER SEQUENCE sessions_session_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE activities_activity_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE activity_versions_version_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE registrations_rowid_seq MAXVALUE 9999999999;
          ALTER SEQUENCE configurations_configuration_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE executions_execution_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE statuses_status_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE seals_seal_id_seq MAXVALUE 9999999999;
          ALTER SEQUENCE ts_schema_rowid_seq MAXVALUE 9999999999;
          RETURN;
        EXCEPTION WHEN lock_not_available THEN
          IF clock_timestamp() > patience THEN RAISE; END IF;
        END;
        PERFORM pg_sleep(0.05 + random() * 0.1);
      END LOOP;
    END $$;
    SET LOCAL lock_timeout = '30s')";

// Times are counted in whole microseconds. A cast would fail for a text that is not a time, or for the year 0, and with
// it the whole view. Days are counted by the Julian day number.
const char* const microseconds = R"(
    CREATE FUNCTION microseconds(at text) RETURNS bigint LANGUAGE sql IMMUTABLE
    RETURN CASE WHEN at ~ ('^[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])'
                           || 'T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]\.[0-9]{6}Z$') THEN
      (((1461 * (CAST(substr(at, 1, 4) AS bigint) + 4800 + (CAST(substr(at, 6, 2) AS bigint) - 14) / 12)) / 4
       + (367 * (CAST(substr(at, 6, 2) AS bigint) - 2 - 12 * ((CAST(substr(at, 6, 2) AS bigint) - 14) / 12))) / 12
       - (3 * ((CAST(substr(at, 1, 4) AS bigint) + 4900 + (CAST(substr(at, 6, 2) AS bigint) - 14) / 12) / 100)) / 4
       + CAST(substr(at, 9, 2) AS bigint)) * 86400
       + CAST(substr(at, 12, 2) AS bigint) * 3600 + CAST(substr(at, 15, 2) AS bigint) * 60
       + CAST(substr(at, 18, 2) AS bigint)) * 1000000 + CAST(substr(at, 21, 6) AS bigint) END)";

// A server in FIPS mode has no md5().
const char* const textDigest = R"(
    CREATE FUNCTION text_digest(text text) RETURNS bytea LANGUAGE sql IMMUTABLE
    RETURN sha256(convert_to(text, 'UTF8')))";

// The month in an event's key is that of the clock. If the newest seal has a later month, because the clock was ahead,
// it is that month: an event with a key below a sealed one would look as if it had been inserted later. The seals of
// other stores do not matter, nor does one that says that it covers their rows.
const char* const keys = R"(
    CREATE FUNCTION sealed_number(kind text) RETURNS bigint LANGUAGE plpgsql STABLE AS $$
    BEGIN
      RETURN (SELECT number
              FROM (SELECT seal_id, CAST(substring(up_to FROM '"' || kind || '":([0-9]{1,16})[,}]') AS bigint) AS number
                    FROM seals WHERE seal_id < 10000000000) AS own
              WHERE (number BETWEEN 10000000000 AND 2000009999999999) IS NOT TRUE
              ORDER BY seal_id DESC LIMIT 1);
    END $$;
    CREATE FUNCTION event_month() RETURNS bigint LANGUAGE sql
    RETURN GREATEST(CAST(to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYYMM') AS bigint),
                    sealed_number('event') / 10000000000);
    CREATE OR REPLACE FUNCTION next_event_id() RETURNS bigint LANGUAGE sql
    RETURN event_month() * 10000000000 + nextval('event_numbers');
    ALTER FUNCTION sealed_number(text) SET search_path = {schema}, pg_temp)";

// The function has the rights of its owner, so that a host that may only add rows can make partitions. A partition is
// made as a table and then attached: made in place, it would wait for every reader, and every host would wait for it.
// The tables that attaching locks are locked before, in the order in which hosts lock them. Hosts wait behind a session
// that waits for a lock, so each wait is short. Two sessions that make partitions wait for each other at ts_schema,
// which a role of hosts cannot lock.
const char* const partitions = R"(
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
    REVOKE EXECUTE ON FUNCTION attach_partitions(bigint) FROM PUBLIC;
    ALTER FUNCTION attach_partitions(bigint) SET search_path = {schema}, pg_temp;
    ALTER FUNCTION make_partition(bigint) SET search_path = {schema}, pg_temp;
    ALTER FUNCTION make_partitions() SET search_path = {schema}, pg_temp;
    ALTER FUNCTION attach_partitions(bigint) SET lock_timeout = '100ms';
    ALTER FUNCTION attach_partitions(bigint) SET default_tablespace = '')";

// Events of another store are only ever added above those that are here. So if this transaction added the lowest event,
// it added all.
const char* const withEvents = R"(
    CREATE FUNCTION refuse_parameters() RETURNS trigger LANGUAGE plpgsql AS $$
    DECLARE
      lowest bigint;
      highest bigint;
    BEGIN
      SELECT MIN(event_id), MAX(event_id) INTO lowest, highest FROM added;
      IF (CASE WHEN lowest BETWEEN 20000000000 AND 2000009999999999 THEN
           highest / 10000000000 <> lowest / 10000000000
           OR NOT EXISTS (SELECT FROM events WHERE event_id = lowest AND event_id < 2000010000000000
                          AND xmin = CAST(pg_current_xact_id() AS xid))
         ELSE
           lowest <= sealed_number('event') OR lowest <> highest OR lowest % 10000000000 <> currval('event_numbers')
         END) OR EXISTS (SELECT FROM added WHERE position < 1) THEN
        RAISE EXCEPTION 'parameters are only added together with their event';
      END IF;
      RETURN NULL;
    END $$;
    CREATE TRIGGER parameters_with_event AFTER INSERT ON parameters REFERENCING NEW TABLE AS added
    FOR EACH STATEMENT WHEN (NOT has_table_privilege(CAST('parameters' AS regclass), 'DELETE'))
    EXECUTE FUNCTION refuse_parameters();
    ALTER FUNCTION refuse_parameters() SET search_path = {schema}, pg_temp)";

// The function has the rights of its owner, because hosts cannot write the table. Nobody else may use it for a trigger.
std::string NoteRunning() {
  return std::string(R"(
    CREATE FUNCTION note_running() RETURNS trigger LANGUAGE plpgsql SECURITY DEFINER AS $$
    BEGIN IF NEW.code = 4 THEN )") +
         Running::note + "; ELSE " + Running::remove + R"(; END IF; RETURN NULL; END $$;
    REVOKE EXECUTE ON FUNCTION note_running() FROM PUBLIC;
    ALTER FUNCTION note_running() SET search_path = {schema}, pg_temp)";
}

// Only for stores whose rows are here.
const char* const noteArrival = R"(
    CREATE FUNCTION note_arrival(bigint, bigint, text) RETURNS void LANGUAGE sql SECURITY DEFINER AS $$
      INSERT INTO arrivals (store, at, waiting, waiting_since)
      SELECT $1, to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS.US"Z"'), $2, $3
      WHERE EXISTS (SELECT FROM stores WHERE store_id = $1 * 10000000000 + 1)
      ON CONFLICT (store) DO UPDATE
      SET at = excluded.at, waiting = excluded.waiting, waiting_since = excluded.waiting_since $$;
    REVOKE EXECUTE ON FUNCTION note_arrival(bigint, bigint, text) FROM PUBLIC;
    ALTER FUNCTION note_arrival(bigint, bigint, text) SET search_path = {schema}, pg_temp)";

const char* const rights = R"(
    DO $$
    DECLARE
      allowed record;
    BEGIN
      FOR allowed IN SELECT privilege_type AS privilege,
                            CASE grantee WHEN 0 THEN 'PUBLIC' ELSE quote_ident(pg_get_userbyid(grantee)) END AS role
                     FROM pg_class, aclexplode(relacl)
                     WHERE oid = CAST('executions' AS regclass) AND grantee <> relowner
                       AND privilege_type IN ('SELECT', 'INSERT') LOOP
        EXECUTE 'GRANT ' || allowed.privilege || ' ON notes, tree_leaves, tree_parts, signatures, timestamps, '
          || 'stores, session_locks TO ' || allowed.role;
        IF allowed.privilege = 'SELECT' THEN
          EXECUTE 'GRANT SELECT ON running, arrivals TO ' || allowed.role;
        ELSE
          EXECUTE 'GRANT INSERT ON seals, ts_schema TO ' || allowed.role;
          EXECUTE 'GRANT USAGE ON SEQUENCE notes_note_id_seq TO ' || allowed.role;
          EXECUTE 'GRANT EXECUTE ON FUNCTION note_arrival(bigint, bigint, text) TO ' || allowed.role;
        END IF;
      END LOOP;
    END $$)";

}  // namespace Version3

}  // namespace Velora::Store::Server
