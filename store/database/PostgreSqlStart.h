#pragma once

namespace Velora::Store {

/// The first statement of every connection to a store: makes the schema of the store the current one, and resets what a
/// role can have set for itself that prevents recording.
///
/// The store is in the first schema of the search path that has one. If the connection does not set the path itself,
/// the path of the database and the usual path are searched too. If there is no store, the current schema is the first
/// schema of these paths.
inline constexpr const char* findStore = R"(
    DO $$
    DECLARE
      stated CONSTANT boolean := EXISTS (SELECT FROM pg_settings WHERE name = 'search_path' AND source = 'client');
      path text;
      place text;
      store text;
    BEGIN
      IF EXISTS (SELECT FROM pg_settings
                 WHERE name = 'default_transaction_read_only' AND source IN ('user', 'database user')) THEN
        SET default_transaction_read_only = off;
      END IF;
      FOREACH path IN ARRAY ARRAY[current_setting('search_path'),
          (SELECT substring(setting FROM '^search_path=(.*)$')
           FROM pg_db_role_setting s JOIN pg_database d ON d.oid = s.setdatabase, unnest(setconfig) AS setting
           WHERE datname = current_database() AND setrole = 0 AND setting LIKE 'search\_path=%'),
          '"$user", public'] LOOP
        CONTINUE WHEN path IS NULL;
        PERFORM set_config('search_path', path, false);
        place := COALESCE(place, current_schema());
        SELECT nspname INTO store
        FROM unnest(current_schemas(false)) WITH ORDINALITY AS seen(nspname, number)
        JOIN pg_namespace n USING (nspname) JOIN pg_class c ON c.relnamespace = n.oid
        WHERE relname = 'ts_schema' AND relkind = 'r' AND nspname !~ '^pg_' ORDER BY number LIMIT 1;
        EXIT WHEN stated OR store IS NOT NULL;
      END LOOP;
      PERFORM set_config('search_path', COALESCE(quote_ident(COALESCE(store, place)) || ', pg_temp', ''), false);
    END $$)";

/// Settings of a connection that records. Commits must be on the disk when they are acknowledged; a server that is set
/// to do more keeps its setting. A host that stops in the middle of a transaction loses its locks after some time.
/// Warnings are sent, because one says that a commit may not have reached the standby.
inline constexpr const char* configure = R"(
    SELECT set_config('statement_timeout', '4s', false), set_config('lock_timeout', '4s', false),
      set_config('client_min_messages', 'warning', false),
      set_config('default_transaction_isolation', 'read committed', false),
      set_config('idle_in_transaction_session_timeout', '60s', false),
      CASE current_setting('synchronous_commit') WHEN 'off' THEN set_config('synchronous_commit', 'on', false) END)";

/// A query for the reason why a server accepts no records or can lose them; empty if there is none.
inline constexpr const char* askWhyNot = R"(
    SELECT CASE
      WHEN pg_is_in_recovery() THEN 'its server is a standby, which only reads; expected the primary'
        ' (if Connection names several servers, target_session_attrs=read-write finds it)'
      WHEN current_setting('default_transaction_read_only') = 'on'
        THEN 'it is set to default_transaction_read_only = on; expected off'
      WHEN current_setting('fsync') = 'off'
        THEN 'its server has fsync = off, and may lose what it acknowledged; expected on'
      WHEN current_setting('full_page_writes') = 'off'
        THEN 'its server has full_page_writes = off, and may lose what it acknowledged; expected on'
      ELSE '' END)";

}  // namespace Velora::Store
