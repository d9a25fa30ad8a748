#include "store/recording/Preparation.h"

#include "store/recording/Writer.h"
#include "store/schema/Tables.h"

#include <map>

namespace Velora::Store {
namespace {

// The names of the role, the schema, the database and the objects of the store, quoted for statements.
constexpr const char* askNames = R"(
    SELECT quote_ident(rolname), quote_ident(nspname), quote_ident(current_database()),
      (SELECT string_agg(CAST(CAST(c.oid AS regclass) AS text), ', ') FROM pg_class c WHERE relowner = owner
       AND relnamespace = s.oid AND relkind IN ('r', 'p', 'v')),
      (SELECT string_agg(CAST(CAST(c.oid AS regclass) AS text), ', ') FROM pg_class c WHERE relowner = owner
       AND relnamespace = s.oid AND relkind = 'S'),
      (SELECT string_agg(CAST(CAST(f.oid AS regprocedure) AS text), ', ') FROM pg_proc f WHERE proowner = owner
       AND pronamespace = s.oid AND prosecdef),
      r.oid = owner, pg_has_role(datdba, 'USAGE') AND datdba = owner
    FROM pg_roles r, (SELECT relnamespace, relowner FROM pg_class WHERE oid = to_regclass('ts_schema'))
      t (schema, owner) JOIN pg_namespace s ON s.oid = schema JOIN pg_database ON datname = current_database()
    WHERE rolname = ?1)";

// First revokes what an earlier version or a person granted. Other roles keep the right to read.
constexpr const char* grants[] = {
    "REVOKE ALL ON SCHEMA {schema} FROM {role} CASCADE",
    "REVOKE ALL ON {tables} FROM {role} CASCADE",
    "REVOKE ALL ON SEQUENCE {sequences} FROM {role} CASCADE",
    "REVOKE ALL ON FUNCTION {functions} FROM PUBLIC, {role} CASCADE",
    "REVOKE INSERT, UPDATE, DELETE, TRUNCATE, REFERENCES, TRIGGER ON {tables} FROM PUBLIC CASCADE",
    "REVOKE UPDATE ON SEQUENCE {sequences} FROM PUBLIC CASCADE",
    "REVOKE CREATE ON SCHEMA {schema} FROM PUBLIC",  // up to PostgreSQL 14, everybody may in the schema public
    "GRANT USAGE ON SCHEMA {schema} TO {role}",
    "GRANT USAGE ON SEQUENCE {sequences} TO {role}",
    "GRANT SELECT ON {tables} TO {role}",
    "GRANT INSERT ON {tables of hosts} TO {role}",
    "GRANT EXECUTE ON FUNCTION {functions of hosts} TO {role}",
};

// Otherwise a role could make tables with the names of the store's tables, also temporary ones, which would be found
// first. Only in a database of the store's owner: other databases may be shared.
constexpr const char* nothingBeside = "REVOKE CREATE, TEMPORARY ON DATABASE {database} FROM PUBLIC, {role} CASCADE";

using Names = std::map<std::string, std::string>;

std::string Filled(std::string statement, const Names& names) {
  for (const auto& [name, value] : names) {
    const std::string place = '{' + name + '}';
    if (const std::size_t at = statement.find(place); at != std::string::npos) {
      statement.replace(at, place.size(), value);
    }
  }
  return statement;
}

void GrantTo(const std::string& role, Writer& store) {
  const auto found =
      store.Sql().Find<std::string, std::string, std::string, std::string, std::string, std::string, bool, bool>(
          askNames, role);
  if (!found) {
    throw Error("the server has no role '" + role + "'; expected a role that CREATE ROLE made");
  }
  const auto& [quoted, schema, database, tables, sequences, functions, ownsStore, ownsDatabase] = *found;
  if (ownsStore) {
    throw Error("the role '" + role + "' owns the store and has every right; expected another role, only for hosts");
  }
  const Names names = {{"role", quoted},
                       {"schema", schema},
                       {"database", database},
                       {"tables", tables},
                       {"sequences", sequences},
                       {"functions", functions},
                       {"tables of hosts", Listed(HostTables())},
                       {"functions of hosts", Listed(HostFunctions())}};
  Transaction transaction(store);
  for (const char* grant : grants) {
    store.Sql().RunScript(Filled(grant, names));
  }
  if (ownsDatabase) {
    store.Sql().RunScript(Filled(nothingBeside, names));
  }
  transaction.Commit();
}

}  // namespace

void PrepareStore(const Database& database, const std::string& hosts) {
  if (!hosts.empty() && database.kind == Database::Kind::Sqlite) {
    throw NotOffered(
        "--hosts is for a store on a server; for a store in a file, the permissions of the file say who may record");
  }
  const auto store = OpenForWriting(database);
  if (!hosts.empty()) {
    GrantTo(hosts, *store);
  }
}

}  // namespace Velora::Store
