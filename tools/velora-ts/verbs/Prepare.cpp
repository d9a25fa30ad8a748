#include "Connection.h"
#include "Statement.h"
#include "output/Output.h"
#include "reading/Store.h"
#include "soundness/PostgreSqlRights.h"
#include "soundness/PostgreSqlSoundness.h"
#include "store/schema/Tables.h"
#include "verbs/StoreVerb.h"

#include <map>

namespace Velora::Ts {

namespace Local = Quor::TolvaServices::Local;
using Quor::TolvaServices::TsError;

namespace {

// What belongs to the store, as statements name it.
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
    WHERE rolname = :role)";

// First whatever was given before is taken away, by an earlier version or by hand. Others keep what lets them read.
constexpr const char* grants[] = {
    "REVOKE ALL ON SCHEMA {schema} FROM {role} CASCADE",
    "REVOKE ALL ON {tables} FROM {role} CASCADE",
    "REVOKE ALL ON SEQUENCE {sequences} FROM {role} CASCADE",
    "REVOKE ALL ON FUNCTION {functions} FROM PUBLIC, {role} CASCADE",
    "REVOKE INSERT, UPDATE, DELETE, TRUNCATE, REFERENCES, TRIGGER ON {tables} FROM PUBLIC CASCADE",
    "REVOKE UPDATE ON SEQUENCE {sequences} FROM PUBLIC CASCADE",
    "REVOKE CREATE ON SCHEMA {schema} FROM PUBLIC",  // up to PostgreSQL 14 everybody may, in the usual one
    "GRANT USAGE ON SCHEMA {schema} TO {role}",
    "GRANT USAGE ON SEQUENCE {sequences} TO {role}",
    "GRANT SELECT ON {tables} TO {role}",
    "GRANT INSERT ON {tables of hosts} TO {role}",
    "GRANT EXECUTE ON FUNCTION {functions of hosts} TO {role}",
};

// Tables of its own, temporary ones too, would be found under the names of the store's. Only in a database of the
// store's owner: others may be shared.
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

void Grant(Local::Connection& connection, const std::string& role) {
  Names names = {{"tables of hosts", Velora::Store::Listed(Velora::Store::HostTables())},
                 {"functions of hosts", hostFunctions}};
  int ownsStore = 0;
  int ownsDatabase = 0;
  if (!Local::Execute(connection.Sql(), askNames, soci::use(role), soci::into(names["role"]),
                      soci::into(names["schema"]), soci::into(names["database"]), soci::into(names["tables"]),
                      soci::into(names["sequences"]), soci::into(names["functions"]), soci::into(ownsStore),
                      soci::into(ownsDatabase))) {
    throw TsError("the server has no role '" + role + "'; expected one that was made with CREATE ROLE");
  }
  if (ownsStore != 0) {
    throw TsError("the role '" + role + "' owns the store and may do anything; expected a role of the hosts' own");
  }
  Local::Transaction transaction(connection);
  for (const char* grant : grants) {
    Local::Execute(connection.Sql(), Filled(grant, names));
  }
  if (ownsDatabase != 0) {
    Local::Execute(connection.Sql(), Filled(nothingBeside, names));
  }
  transaction.Commit();
}

/// What hosts miss after all, for example since a table of another one's has the name of a partition.
ExitCode SayWhatIsMissing(const Local::Database& database) {
  ExitCode result = Done;
  for (const std::string& missing : MissingPartitions(Store(database))) {
    Say("finding: " + missing);
    result = Found;
  }
  return result;
}

class PrepareVerb : public StoreVerb {
 public:
  explicit PrepareVerb(Options& options) : StoreVerb(options) {
    options.AddText("--hosts", hosts, "Let this role of the PostgreSQL server record, and nothing else");
  }

  ExitCode Execute() override {
    const Local::Database database = Database();
    const bool onServer = database.kind == Local::Database::Kind::PostgreSql;
    if (!hosts.empty() && !onServer) {
      Complain("a store in a file has no roles; who may record is said by the rights on the file");
      return WrongUsage;
    }
    const auto connection = Local::OpenConnection(database);
    try {
      if (!hosts.empty()) {
        Grant(*connection, hosts);
      }
    } catch (const soci::soci_error& reason) {
      throw connection->ErrorOf(reason);
    }
    if (onServer && SayWhatIsMissing(database) == Found) {
      return Found;
    }
    Say("the store is ready" + (hosts.empty() ? "" : " for the role " + hosts));
    return Done;
  }

 private:
  std::string hosts;
};

}  // namespace

extern const Registration registeredPrepare = {
    "prepare", "Makes the store or brings it up to this version. Run as the owner of a server's database.",
    "prepare --hosts microscopes", &Make<PrepareVerb>};

}  // namespace Velora::Ts
