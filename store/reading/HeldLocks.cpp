#include "store/reading/HeldLocks.h"

#include "store/database/SqliteConnection.h"
#include "store/reading/Reader.h"
#include "store/schema/SessionLocks.h"

#include <VeloraSystem/ProcessLock.h>

namespace Velora::Store {

namespace {

class FileLocks : public HeldLocks {
 public:
  explicit FileLocks(const std::string& file) : locks(file) {
    where = locks.Place();
    if (where.empty()) {
      whyNot = "the file with the locks of its hosts, '" + file + "', cannot be opened: " + locks.Reason();
    }
  }
  std::optional<bool> IsHeld(long long session) const override { return locks.IsHeld(session); }

 private:
  const System::ProcessLocks locks;
};

class NoLocks : public HeldLocks {
 public:
  std::optional<bool> IsHeld(long long /*session*/) const override { return std::nullopt; }
};

}  // namespace

std::unique_ptr<HeldLocks> AskForLocks(const Reader& store) {
  if (store.Where().kind == Database::Kind::PostgreSql) {
    auto none = std::make_unique<NoLocks>();
    none->whyNot = "its host is one of a server";
    return none;
  }
  sqlite3* const file = static_cast<SqliteConnection&>(store.Sql()).Handle();
  return std::make_unique<FileLocks>(LockFileOf(sqlite3_db_filename(file, "main")));
}

}  // namespace Velora::Store
