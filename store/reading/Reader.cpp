#include "store/reading/Reader.h"

#include "store/reading/PostgreSqlSource.h"
#include "store/reading/Rows.h"
#include "store/reading/SqliteSource.h"
#include "store/schema/BringUp.h"

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
  if (database.kind == Database::Kind::PostgreSql) {
    this->database.where = static_cast<PostgreSqlConnection&>(Sql()).ServerUri();
  }
  ExpectStore();
}

void Reader::Renew() {
  source->Renew();
  ExpectStore();
}

void Reader::ExpectStore() {
  if (!source->IsStore()) {
    throw Error("'" + Name() + "' is not a TS store; expected a database with the tables of a TS store");
  }
  const StoreVersion version = VersionOf(Sql());
  if (!version.IsUsable()) {
    throw UnknownSchema("TS store '" + Name() + "' has a schema of version " + std::to_string(version.lowestHost) +
                        "; expected version " + std::to_string(Store::schemaVersion) + " at most");
  }
  schemaVersion = version.number;
}

}  // namespace Velora::Store
