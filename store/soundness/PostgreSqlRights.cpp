#include "store/soundness/PostgreSqlRights.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/Arrivals.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/Tables.h"

#include <algorithm>

namespace Velora::Store {

namespace {

// The names of the tables of a store, for the queries below.
std::string Names() {
  std::vector<std::string> recorded;
  for (const Table& table : Tables()) {
    recorded.push_back(table.name);
  }
  recorded.emplace_back("running");
  recorded.push_back(SessionLocks().name);
  recorded.push_back(Arrivals().name);
  const auto list = [](const std::vector<std::string>& names) {
    std::vector<std::string> quoted(names.size());
    std::transform(names.begin(), names.end(), quoted.begin(),
                   [](const std::string& name) { return '\'' + name + '\''; });
    return "ARRAY[" + Listed(quoted) + ']';
  };
  return "WITH names (recorded, host_tables, host_functions) AS (VALUES (" + list(recorded) + ", " +
         list(HostTables()) + ", " + list(HostFunctions()) + ")),";
}

// All rights that are granted on the objects of a store, and whether hosts need them. Views of the owner, in any
// schema, act with the owner's rights; so do functions, also as triggers of any table without a grant. Functions of
// another store are checked with that store.
constexpr const char* rights = R"(
    store AS (
      SELECT relnamespace AS schema, relowner AS owner FROM pg_class WHERE oid = to_regclass('ts_schema')),
    catalogs AS (
      SELECT oid FROM pg_namespace WHERE nspname IN ('pg_catalog', 'information_schema')),
    tables AS (
      SELECT c.oid, relname = ANY (host_tables) AS ofhosts
      FROM names, store JOIN pg_class c ON relnamespace = schema WHERE relname = ANY (recorded)),
    relations (oid, owner, acl, ofhosts) AS (
      SELECT c.oid, relowner, relacl, relkind = 'S' OR COALESCE(t.ofhosts, false)
      FROM store, pg_class c LEFT JOIN tables t ON t.oid = c.oid
      WHERE t.oid IS NOT NULL
         OR c.oid IN (SELECT inhrelid FROM pg_inherits WHERE inhparent IN (SELECT oid FROM tables))
         OR relnamespace = schema AND relkind IN ('S', 'v')
         OR relowner = store.owner AND relkind = 'v' AND relnamespace NOT IN (SELECT oid FROM catalogs)),
    objects (object, owner, acl, ofhosts) AS (
      SELECT CAST(CAST(oid AS regclass) AS text), owner, acl, ofhosts FROM relations
      UNION ALL
      SELECT 'column ' || attname || ' of ' || CAST(r.oid AS regclass), owner, attacl, ofhosts
      FROM relations r JOIN pg_attribute ON attrelid = r.oid
      UNION ALL
      SELECT 'schema ' || nspname, nspowner, nspacl, false FROM store JOIN pg_namespace n ON n.oid = schema
      UNION ALL
      SELECT 'function ' || CAST(f.oid AS regprocedure) || ', which acts as ' || pg_get_userbyid(proowner), proowner,
             CASE WHEN prorettype = CAST('trigger' AS regtype)
                       AND NOT (pronamespace = schema AND proname = 'note_running')
                  THEN acldefault('f', proowner) ELSE COALESCE(proacl, acldefault('f', proowner)) END,
             proname || '(' || oidvectortypes(proargtypes) || ')' = ANY (host_functions)
             AND pronamespace IN (SELECT relnamespace FROM pg_class WHERE relname = 'ts_schema')
      FROM names, store JOIN pg_proc f ON prosecdef AND (pronamespace = schema OR proowner = owner)
      WHERE NOT EXISTS (SELECT FROM pg_depend WHERE objid = f.oid AND deptype = 'e')),
    rights AS (
      SELECT object, owner, ofhosts, grantee, is_grantable AS passed, privilege_type AS privilege
      FROM objects, aclexplode(acl) WHERE grantee <> owner AND grantee <> (SELECT owner FROM store)),
    hosts AS (
      SELECT DISTINCT grantee FROM rights WHERE privilege = 'INSERT' AND grantee <> 0)
    )";

constexpr const char* tooMuch = R"(
    SELECT string_agg(privilege, ', ' ORDER BY privilege) || ' on ' || object || ' is granted to ' ||
           CASE grantee WHEN 0 THEN 'everybody' ELSE pg_get_userbyid(grantee) END ||
           CASE WHEN passed THEN ', who may grant it further' ELSE '' END
    FROM rights
    WHERE NOT (privilege IN ('SELECT', 'USAGE') OR
               privilege IN ('INSERT', 'EXECUTE') AND ofhosts AND grantee <> 0 AND NOT passed)
    GROUP BY object, grantee, passed
    UNION ALL
    SELECT 'rule ' || rulename || ' on ' || CAST(c.oid AS regclass) || ' acts as ' || pg_get_userbyid(owner)
    FROM store JOIN pg_class c ON relowner = owner AND relnamespace NOT IN (SELECT oid FROM catalogs)
    JOIN pg_rewrite ON ev_class = c.oid AND rulename <> '_RETURN'
    UNION ALL
    SELECT privilege_type || ' on tables that ' || pg_get_userbyid(defaclrole) || ' makes is granted to ' ||
           CASE grantee WHEN 0 THEN 'everybody' ELSE pg_get_userbyid(grantee) END
    FROM store JOIN pg_default_acl ON defaclrole = owner AND defaclobjtype = 'r' AND defaclnamespace IN (0, schema),
         aclexplode(defaclacl)
    WHERE grantee <> owner AND privilege_type <> 'SELECT')";

// Roles whose attributes or memberships make grants useless. Up to PostgreSQL 15, a role that may create roles can give
// itself any role.
constexpr const char* tooMighty = R"(
    SELECT 'role ' || rolname || ' may record, and ' || power
    FROM store, pg_roles r, LATERAL (VALUES
      (rolsuper, 'is a superuser'),
      (NOT rolsuper AND pg_has_role(r.oid, owner, 'MEMBER'), 'act as the owner of the store'),
      (NOT rolsuper AND pg_has_role(r.oid, 'pg_write_server_files', 'MEMBER'), 'write files of the server'),
      (NOT rolsuper AND pg_has_role(r.oid, 'pg_execute_server_program', 'MEMBER'), 'run programs on the server'),
      (NOT rolsuper AND rolcreaterole AND CAST(current_setting('server_version_num') AS integer) < 160000,
       'give itself the roles of others')) powers (has, power)
    WHERE has AND r.oid <> owner AND EXISTS (
      SELECT FROM hosts WHERE grantee = r.oid OR NOT rolsuper AND pg_has_role(r.oid, grantee, 'MEMBER'))
    UNION ALL
    SELECT 'role ' || rolname || ' may write every table of the server (pg_write_all_data)'
    FROM store, pg_roles r
    WHERE NOT rolsuper AND r.oid <> owner AND rolname <> 'pg_write_all_data'
      AND pg_has_role(r.oid, 'pg_write_all_data', 'MEMBER')
    UNION ALL
    SELECT 'schema ' || nspname || ' belongs to ' || rolname || ', who may drop what is in it'
    FROM store JOIN pg_namespace n ON n.oid = schema JOIN pg_roles r ON r.oid = nspowner
    WHERE nspowner <> owner AND NOT rolsuper AND rolname <> 'pg_database_owner'
    UNION ALL
    SELECT setting || ' is set for ' || CASE setrole WHEN 0 THEN 'everybody' ELSE pg_get_userbyid(setrole) END ||
           ', so that triggers do not act'
    FROM pg_db_role_setting, unnest(setconfig) setting
    WHERE setting ~ '^session_replication_role=(replica|local)'
      AND setdatabase IN (SELECT 0 UNION SELECT oid FROM pg_database WHERE datname = current_database()))";

constexpr const char* settable = R"(
    SELECT 'role ' || CASE grantee WHEN 0 THEN 'public' ELSE pg_get_userbyid(grantee) END ||
           ' may keep triggers from acting (session_replication_role)'
    FROM pg_parameter_acl, aclexplode(paracl) WHERE parname = 'session_replication_role' AND privilege_type = 'SET'
      AND grantee NOT IN (SELECT oid FROM pg_roles WHERE rolsuper))";

}  // namespace

std::vector<std::string> RightsFindings(const Reader& store) {
  std::vector<std::string> questions = {Names() + rights + tooMuch, Names() + rights + tooMighty};
  Rows settings(store, "SELECT to_regclass('pg_catalog.pg_parameter_acl')");  // from PostgreSQL 15 on
  if (settings.Next() && !settings.IsNull(0)) {
    questions.emplace_back(settable);
  }
  std::vector<std::string> findings;
  for (const std::string& question : questions) {
    for (Rows rows(store, question); rows.Next();) {
      findings.emplace_back(rows.Text(0));
    }
  }
  return findings;
}

}  // namespace Velora::Store
