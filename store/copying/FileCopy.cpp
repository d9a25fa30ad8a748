#include "store/copying/FileCopy.h"

#include "store/database/SqliteConnection.h"
#include "store/reading/Reader.h"

namespace Velora::Store {
namespace {

constexpr int pagesAtOnce = 1024;

}  // namespace

void ExpectFile(const Reader& store, const std::string& target) {
  if (store.Where().kind == Database::Kind::PostgreSql) {
    throw NotOffered("a server's own tools copy what is on it: pg_dump --format=custom --file='" + target +
                     "' for this database (docs/postgresql.md), pg_basebackup for the whole server; velora-ts copy "
                     "makes a file of SQLite");
  }
}

void CopyFile(const Reader& store, const std::string& target, const std::function<void(long long pages)>& copied) {
  const auto fail = [&](const std::string& reason) {
    throw Error("file '" + target + "' cannot be written: " + reason);
  };
  try {
    SqliteConnection to(target, target, SQLITE_OPEN_READWRITE);
    // Whoever opens what a killed program left would roll it back to nothing; without a journal it stays what it is.
    to.RunScript("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    sqlite3* const from = static_cast<SqliteConnection&>(store.Sql()).Handle();
    const std::unique_ptr<sqlite3_backup, decltype(&sqlite3_backup_finish)> copy(
        sqlite3_backup_init(to.Handle(), "main", from, "main"), &sqlite3_backup_finish);
    if (!copy) {
      to.Fail();
    }
    int step = SQLITE_OK;
    while (step == SQLITE_OK) {
      step = sqlite3_backup_step(copy.get(), pagesAtOnce);
      copied(sqlite3_backup_pagecount(copy.get()) - sqlite3_backup_remaining(copy.get()));
    }
    if (step != SQLITE_DONE) {
      fail(sqlite3_errstr(step));
    }
  } catch (const DatabaseError& error) {
    fail(error.reason);
  }
}

}  // namespace Velora::Store
