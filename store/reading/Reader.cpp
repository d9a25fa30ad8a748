#include "store/reading/Reader.h"

#include "store/reading/PostgreSqlSource.h"
#include "store/reading/Rows.h"
#include "store/reading/SqliteSource.h"
#include "store/schema/Versions.h"

namespace Velora::Store {
namespace {

std::unique_ptr<Source> Open(const Database& database, const std::string& snapshot) {
  if (database.kind == Database::Kind::PostgreSql) {
    return std::make_unique<PostgreSqlSource>(database.where, snapshot);
  }
  return std::make_unique<SqliteSource>(database.where);
}

}  // namespace

Reader::Reader(const Database& database, const std::string& snapshot)
    : database(database), source(Open(database, snapshot)) {
  if (!source->IsStore()) {
    throw Error("'" + Name() + "' is not a TS store; expected a database with the tables of a TS store");
  }
  Rows version(*this, "SELECT COALESCE(MAX(version), 0) FROM ts_schema");
  version.Next();
  schemaVersion = static_cast<int>(version.Integer(0));
  if (schemaVersion < 1 || schemaVersion > Store::schemaVersion) {
    throw Error("TS store '" + Name() + "' has a schema of version " + std::to_string(schemaVersion) +
                "; expected version " + std::to_string(Store::schemaVersion) + " at most");
  }
}

}  // namespace Velora::Store
