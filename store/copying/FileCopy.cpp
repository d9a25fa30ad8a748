#include "store/copying/FileCopy.h"

#include "store/database/SqliteConnection.h"
#include "store/reading/Reader.h"

#include <VeloraSystem/Path.h>

namespace Velora::Store {
namespace {

constexpr int pagesAtOnce = 1024;

}  // namespace

void ExpectFile(const Reader& store, const std::string& target) {
  if (store.Where().kind == Database::Kind::PostgreSql) {
    throw NotOffered(
        "backup copies only stores in a file; for this database run pg_dump --format=custom --file='" + target +
        "' (docs/postgresql.md), for the whole server pg_basebackup, or velora-ts copy for a copy in a file");
  }
}

void CopyFile(const Reader& store, const std::string& target, const std::function<void(long long pages)>& copied) {
  const auto fail = [&](const std::string& reason) {
    throw Error("file '" + target + "' cannot be written: " + reason);
  };
  try {
    SqliteConnection to(target, System::AtAnyLength(target), SQLITE_OPEN_READWRITE);
    // Without a journal: if the program is killed, the next program to open the file would undo the copy from it.
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
