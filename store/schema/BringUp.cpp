#include "store/schema/BringUp.h"

#include "store/database/Connection.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {
namespace {

void EnterVersions(Connection& connection, int from, int to) {
  const std::string now = ToStoredTime(Now());
  for (const int version : VersionEntries(from, to)) {
    connection.Run("INSERT INTO ts_schema (version, created_at) VALUES (?1, ?2)", version, now);
  }
}

}  // namespace

StoreVersion VersionOf(Connection& store) {
  const auto [number, lowestHost] = store.Find<int, int>(askVersion).value();
  return {number, lowestHost};
}

void BringUpSqlite(Connection& connection, int from, int to) {
  for (const std::string& statement : SqliteSchema(from, to)) {
    connection.RunScript(statement);
  }
  EnterVersions(connection, from, to);
}

void BringUpPostgreSql(Connection& connection, int from, int to) {
  const std::string schema = connection.Find<std::string>("SELECT quote_ident(current_schema())").value();
  connection.RunScript(PostgreSqlSchema(schema, from, to));
  EnterVersions(connection, from, to);
}

}  // namespace Velora::Store
