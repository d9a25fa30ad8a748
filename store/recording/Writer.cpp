#include "store/recording/Writer.h"

#include "store/recording/PostgreSqlWriter.h"
#include "store/recording/SqliteWriter.h"
#include "store/schema/BringUp.h"

namespace Velora::Store {

int Writer::VersionIn(const Contents& contents) {
  if (!contents.any) {
    if (opening == Opening::ExpectsStore) {
      throw StoreReplaced(Name());
    }
    return 0;
  }
  if (!contents.isStore) {
    throw Error("TS database '" + Name() +
                "' is not a TS store: it has tables of another program; expected an empty database or a TS store");
  }
  const StoreVersion version = contents.version ? *contents.version : VersionOf(Sql());
  if (!version.IsUsable()) {
    throw Error("TS database '" + Name() + "' has a schema of version " + std::to_string(version.lowestHost) +
                "; expected version " + std::to_string(schemaVersion) + " at most" +
                (version.lowestHost > schemaVersion ? ": a newer program made it" : ""));
  }
  return version.number;
}

void Writer::BringUp() {
  Transaction transaction(*this);
  if (BringUpWithin() < schemaVersion) {  // unless another process was first
    transaction.Commit();
  }
}

int Writer::BringUpWithin() {
  HoldSchema();
  const int version = StoredVersion();
  if (version < schemaVersion) {
    BringUpSchema(version);
  }
  return version;
}

std::unique_ptr<Writer> OpenForWriting(const Database& database, Opening opening) {
  if (database.kind == Database::Kind::PostgreSql) {
    return std::make_unique<PostgreSqlWriter>(database.where, opening);
  }
  try {
    return std::make_unique<SqliteWriter>(database.where, opening);
  } catch (const StoreReplaced&) {
    if (opening == Opening::ExpectsStore) {
      throw;
    }
  }
  return std::make_unique<SqliteWriter>(database.where, opening);  // velora-ts rotate put another file there
}

Transaction::~Transaction() {
  if (!open) {
    return;
  }
  try {
    store.Rollback();
  } catch (...) {
    // The error that ended the transaction is already being thrown.
  }
}

void Transaction::Commit() {
  store.Commit();
  open = false;
}

}  // namespace Velora::Store
