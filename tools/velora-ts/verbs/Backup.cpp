#include "output/FreshFile.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "reading/SqliteSource.h"
#include "reading/Store.h"
#include "records/Records.h"
#include "soundness/Soundness.h"
#include "verbs/StoreVerb.h"

#include <TSAL/Error.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Velora::Ts {

using Quor::TolvaServices::TsError;

namespace {

constexpr int pagesAtOnce = 1024;

constexpr mode_t ownerAndGroup = 0640;  // as the store is

sqlite3* HandleOf(const Store& store) { return static_cast<const SqliteSource&>(store.Reading()).Handle(); }

void Copy(const Store& store, const std::string& file) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> target(opened, &sqlite3_close);
  const auto fail = [&] { throw TsError("file '" + file + "' cannot be written: " + sqlite3_errmsg(target.get())); };
  // Whoever opens what a killed program left would roll it back to nothing; without a journal it stays what it is.
  if (result != SQLITE_OK ||
      sqlite3_exec(opened, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr) != 0) {
    fail();
  }
  const std::unique_ptr<sqlite3_backup, decltype(&sqlite3_backup_finish)> copy(
      sqlite3_backup_init(target.get(), "main", HandleOf(store), "main"), &sqlite3_backup_finish);
  if (!copy) {
    fail();
  }
  Progress progress("Copying pages", 0);
  int step = SQLITE_OK;
  while (step == SQLITE_OK) {
    step = sqlite3_backup_step(copy.get(), pagesAtOnce);
    progress.Show(sqlite3_backup_pagecount(copy.get()) - sqlite3_backup_remaining(copy.get()));
  }
  if (step != SQLITE_DONE) {
    throw TsError("file '" + file + "' cannot be written: " + sqlite3_errstr(step));
  }
}

void ExpectSound(const Store& store, const Store& copy) {
  if (const auto damage = DamageFindings(copy); !damage.empty()) {
    throw TsError("the copy of '" + store.Name() + "' is not sound: " + damage.front());
  }
  if (HighestNumbers(copy) != HighestNumbers(store)) {
    throw TsError("the copy of '" + store.Name() + "' lacks rows");
  }
}

class BackupVerb : public StoreVerb {
 public:
  explicit BackupVerb(Options& options) : StoreVerb(options) {
    options.AddRequiredText("FILE", file, "A file that is not there yet");
  }

  ExitCode Execute() override {
    const Store store(Database());
    if (store.Kind() == Store::Database::Kind::PostgreSql) {
      Complain("a server's own tools copy what is on it: pg_dump --format=custom --file='" + file +
               "' for this database (docs/postgresql.md), pg_basebackup for the whole server; velora-ts copy makes a "
               "file of SQLite");
      return WrongUsage;
    }
    if (std::error_code unknown; std::filesystem::exists(std::filesystem::symlink_status(file, unknown))) {
      throw TsError("file '" + file + "' cannot be written: " + std::system_category().message(EEXIST));
    }
    const Numbers highest = HighestNumbers(store);
    FreshFile fresh(file, ownerAndGroup);
    Copy(store, fresh.Path());
    store.ExpectUntouched();
    ExpectSound(store, Store({Store::Database::Kind::Sqlite, fresh.Path()}));
    fresh.TakeName(FreshFile::Existing::Keep);
    Say("store '" + store.Name() + "' copied to '" + file + "' and checked: " + std::to_string(highest[Executions]) +
        " executions, " + std::to_string(highest[Events]) + " events");
    return Done;
  }

 private:
  std::string file;
};

}  // namespace

extern const Registration registeredBackup = {"backup",
                                              "Copies the store to FILE while hosts record, and checks the copy.",
                                              "backup /backup/veldmar-2026-11-24.db", &Make<BackupVerb>};

}  // namespace Velora::Ts
