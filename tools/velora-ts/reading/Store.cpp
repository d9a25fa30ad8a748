#include "reading/Store.h"

#include "PostgreSqlSettings.h"
#include "Schema.h"
#include "reading/PostgreSqlSource.h"
#include "reading/Rows.h"
#include "reading/SqliteSource.h"

#include <TSAL/Error.h>

namespace Velora::Ts {

namespace Local = Quor::TolvaServices::Local;
using Quor::TolvaServices::TsError;

namespace {

bool IsOnServer(const Local::Database& database) { return database.kind == Local::Database::Kind::PostgreSql; }

std::unique_ptr<Source> Open(const Local::Database& database, const std::string& snapshot) {
  if (IsOnServer(database)) {
    return std::make_unique<PostgreSqlSource>(database.where, snapshot);
  }
  return std::make_unique<SqliteSource>(database.where);
}

}  // namespace

Store::Store(const Database& database, const std::string& snapshot)
    : database(database),
      name(IsOnServer(database) ? Local::NameOf(database.where) : database.where),
      source(Open(database, snapshot)) {
  if (!source->IsStore()) {
    throw TsError("'" + name + "' is no TS store; expected a database with the tables of one");
  }
  Rows version(*this, "SELECT COALESCE(MAX(version), 0) FROM ts_schema");
  version.Next();
  schemaVersion = static_cast<int>(version.Integer(0));
  if (schemaVersion < 1 || schemaVersion > Local::schemaVersion) {
    throw TsError("TS store '" + name + "' has a schema of version " + std::to_string(schemaVersion) +
                  "; expected version " + std::to_string(Local::schemaVersion) + " at most");
  }
}

}  // namespace Velora::Ts
