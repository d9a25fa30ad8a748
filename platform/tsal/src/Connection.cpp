#include "Connection.h"

#include "PostgreSqlConnection.h"
#include "Schema.h"
#include "SqliteConnection.h"
#include "Statement.h"

namespace Quor::TolvaServices::Local {

int Connection::StoredVersion(const std::string& name) {
  const Contents contents = FindTables();
  if (!contents.any) {
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

void Connection::BringUp(const std::string& name) {
  Transaction transaction(*this);
  HoldSchema();
  if (const int version = StoredVersion(name); version != schemaVersion) {  // another process may have been first
    BringUpSchema(version);
    transaction.Commit();
  }
}

std::unique_ptr<Connection> OpenConnection(const Database& database) {
  if (database.kind == Database::Kind::PostgreSql) {
    return std::make_unique<PostgreSqlConnection>(database.where);
  }
  return std::make_unique<SqliteConnection>(database.where);
}

Transaction::~Transaction() {
  if (!open) {
    return;
  }
  try {
    Execute(connection.Sql(), "ROLLBACK");
  } catch (...) {
    // What made the transaction end is being raised already.
  }
}

void Transaction::Commit() {
  connection.Commit();
  open = false;
}

}  // namespace Quor::TolvaServices::Local
