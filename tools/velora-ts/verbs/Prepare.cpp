#include "Connection.h"
#include "Statement.h"
#include "output/Output.h"
#include "verbs/Verbs.h"

namespace Local = Quor::TolvaServices::Local;

namespace {

// A host adds rows, reads what it refers to, and has the partitions made; it seals nothing.
constexpr const char* grants[] = {
    "REVOKE CREATE ON SCHEMA {schema} FROM PUBLIC",  // up to PostgreSQL 14 everybody may, in the usual one
    "GRANT USAGE ON SCHEMA {schema} TO {role}",
    "GRANT USAGE ON ALL SEQUENCES IN SCHEMA {schema} TO {role}",
    "GRANT SELECT ON ALL TABLES IN SCHEMA {schema} TO {role}",
    R"(GRANT INSERT ON sessions, activities, activity_versions, registrations, configurations, executions, statuses,
       events, parameters TO {role})",
    "GRANT EXECUTE ON FUNCTION make_partitions() TO {role}",
};

std::string Filled(std::string statement, const std::string& schema, const std::string& role) {
  for (const auto& [place, value] : {std::pair("{schema}", schema), std::pair("{role}", role)}) {
    if (const std::size_t at = statement.find(place); at != std::string::npos) {
      statement.replace(at, std::char_traits<char>::length(place), value);
    }
  }
  return statement;
}

void Grant(Local::Connection& connection, const std::string& role) {
  std::string schema;
  std::string quoted;
  Local::Execute(connection.Sql(), "SELECT quote_ident(current_schema()), quote_ident(:role)", soci::use(role),
                 soci::into(schema), soci::into(quoted));
  Local::Transaction transaction(connection);
  for (const char* grant : grants) {
    Local::Execute(connection.Sql(), Filled(grant, schema, quoted));
  }
  transaction.Commit();
}

}  // namespace

ExitCode Prepare(const Local::Database& database, const std::string& hosts) {
  if (!hosts.empty() && database.kind != Local::Database::Kind::PostgreSql) {
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
  Say("the store is ready" + (hosts.empty() ? "" : " for the role " + hosts));
  return Done;
}
