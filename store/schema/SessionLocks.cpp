#include "store/schema/SessionLocks.h"

namespace Velora::Store {

const Table& SessionLocks() {
  static const Table table = {
      .name = "session_locks",
      .record = "",
      .columns = {{"session_id", Type::Integer, "the session"}, {"place", Type::Text, "identifies what has its lock"}},
      .primaryKey = {"session_id", "place"},
      .since = 3};
  return table;
}

std::string LockFileOf(const std::string& store) { return store + "-hosts"; }

const char* const ServerLock::where =
    "(SELECT 'server ' || system_identifier || ' database ' || d.oid || ' table ' || "
    "CAST(CAST('session_locks' AS regclass) AS oid) FROM pg_control_system(), pg_database d "
    "WHERE datname = current_database())";

const char* const ServerLock::since =
    "(SELECT ' since ' || EXTRACT(EPOCH FROM pg_postmaster_start_time()) || ' ' || "
    "COALESCE(EXTRACT(EPOCH FROM pg_stat_get_bgwriter_stat_reset_time()), 0) || ' ' || "
    "pg_stat_get_db_sessions_killed(d.oid) FROM pg_database d WHERE datname = current_database())";

const char* const ServerLock::held =
    "(SELECT CAST(objid AS bigint) FROM pg_locks WHERE locktype = 'advisory' AND granted AND objsubid = 1 AND "
    "database = (SELECT oid FROM pg_database WHERE datname = current_database()) AND "
    "classid = CAST(CAST('session_locks' AS regclass) AS oid))";

}  // namespace Velora::Store
