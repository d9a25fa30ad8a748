#include "Connection.h"

#include "PostgreSqlConnection.h"
#include "Schema.h"
#include "SqliteConnection.h"
#include "Statement.h"

namespace Quor::TolvaServices::Local {

int Connection::StoredVersion() {
  const Contents contents = FindTables();
  if (!contents.any) {
    if (opening == Opening::ExpectsStore) {
      throw StoreReplaced(name);
    }
    return 0;
  }
  if (!contents.isStore) {
    throw TsError("TS database '" + name +
                  "' is no TS store: it holds tables of another program; expected an empty database or a TS store");
  }
  int version = 0;
  Execute(sql, "SELECT COALESCE(MAX(version), 0) FROM ts_schema", soci::into(version));
  if (version < 1 || version > schemaVersion) {
    throw TsError("TS database '" + name + "' has a schema of version " + std::to_string(version) +
                  "; expected version " + std::to_string(schemaVersion) + " at most" +
                  (version > schemaVersion ? ": a newer program made it" : ""));
  }
  return version;
}

void Connection::Rollback() { Execute(sql, "ROLLBACK"); }

void Connection::BringUp() {
  Transaction transaction(*this);
  if (BringUpWithin() != schemaVersion) {  // another process may have been first
    transaction.Commit();
  }
}

int Connection::BringUpWithin() {
  HoldSchema();
  const int version = StoredVersion();
  if (version != schemaVersion) {
    BringUpSchema(version);
  }
  return version;
}

std::unique_ptr<Connection> OpenConnection(const Database& database, Opening opening) {
  if (database.kind == Database::Kind::PostgreSql) {
    return std::make_unique<PostgreSqlConnection>(database.where, opening);
  }
  return std::make_unique<SqliteConnection>(database.where, opening);
}

Transaction::~Transaction() {
  if (!open) {
    return;
  }
  try {
    connection.Rollback();
  } catch (...) {
    // What made the transaction end is being raised already.
  }
}

void Transaction::Commit() {
  connection.Commit();
  open = false;
}

}  // namespace Quor::TolvaServices::Local
