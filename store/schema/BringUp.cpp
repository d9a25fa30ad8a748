#include "store/schema/BringUp.h"

#include "store/database/Connection.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {
namespace {

void AddVersion(Connection& connection, int version) {
  connection.Run("INSERT INTO ts_schema (version, created_at) VALUES (?1, ?2)", version, ToStoredTime(Now()));
}

}  // namespace

void BringUpSqlite(Connection& connection, int from, int to) {
  for (const std::string& statement : SqliteSchema(from, to)) {
    connection.RunScript(statement);
  }
  AddVersion(connection, to);
}

void BringUpPostgreSql(Connection& connection, int from, int to) {
  const std::string schema = connection.Find<std::string>("SELECT quote_ident(current_schema())").value();
  connection.RunScript(PostgreSqlSchema(schema, from, to));
  AddVersion(connection, to);
}

}  // namespace Velora::Store
