#include "store/schema/BringUp.h"

#include "store/database/Connection.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"
#include "store/values/Guid.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {
namespace {

void EnterVersions(Connection& connection, int from, int to) {
  const std::string now = ToStoredTime(Now());
  for (const int version : VersionEntries(from, to)) {
    connection.Run("INSERT INTO ts_schema (version, created_at) VALUES (?1, ?2)", version, now);
  }
}

void EnterItself(Connection& connection, int from, int to, const std::optional<Continued>& previous = std::nullopt) {
  const int since = TableNamed("stores").since;
  if (from < since && to >= since) {
    const auto ofPrevious = [&](std::string Continued::*what) {
      return previous ? std::optional(*previous.*what) : std::nullopt;
    };
    connection.Run(
        "INSERT INTO stores (store_id, guid, made_at, previous_guid, previous_hash) VALUES (?1, ?2, ?3, ?4, ?5)",
        thisStore, NewGuid(), ToStoredTime(Now()), ofPrevious(&Continued::guid), ofPrevious(&Continued::hash));
  }
}

}  // namespace

StoreVersion VersionOf(Connection& store) {
  const auto [number, lowestHost] = store.Find<int, int>(askVersion).value();
  return {number, lowestHost};
}

void BringUpSqlite(Connection& connection, int from, int to, const std::optional<Continued>& previous) {
  for (const std::string& statement : SqliteSchema(from, to)) {
    connection.RunScript(statement);
  }
  EnterVersions(connection, from, to);
  EnterItself(connection, from, to, previous);
}

void BringUpPostgreSql(Connection& connection, int from, int to) {
  const std::string schema = connection.Find<std::string>("SELECT quote_ident(current_schema())").value();
  connection.RunScript(PostgreSqlSchema(schema, from, to));
  EnterVersions(connection, from, to);
  EnterItself(connection, from, to);
}

}  // namespace Velora::Store
