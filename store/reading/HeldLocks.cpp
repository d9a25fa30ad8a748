#include "store/reading/HeldLocks.h"

#include "store/database/SqliteConnection.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/SessionLocks.h"

#include <VeloraSystem/ProcessLock.h>

#include <set>

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

class ServerLocks : public HeldLocks {
 public:
  // What says that locks can have been taken away is asked after what is left of them.
  explicit ServerLocks(const Reader& store) {
    Rows locks(store, ServerLock::held);
    while (locks.Next()) {
      held.insert(locks.Integer(0));
    }
    Rows asked(store, std::string("SELECT has_table_privilege(") + ServerLock::ofStore +
                          ", 'SELECT'), pg_is_in_recovery(), " + ServerLock::where + ", " + ServerLock::since);
    asked.Next();
    if (asked.Text(0) != "t") {
      canReadPlaces = false;
      whyNot = "this role may not read session_locks";
    } else if (asked.Text(1) == "t") {
      whyNot = "the server is a standby, on which hosts hold no locks";
    } else {
      where = asked.Text(2);
      since = asked.Text(3);
    }
  }
  std::optional<bool> IsHeld(long long session) const override { return held.count(session) != 0; }

 private:
  std::set<long long> held;
};

}  // namespace

std::unique_ptr<HeldLocks> AskForLocks(const Reader& store) {
  if (store.Where().kind == Database::Kind::PostgreSql) {
    return std::make_unique<ServerLocks>(store);
  }
  sqlite3* const file = static_cast<SqliteConnection&>(store.Sql()).Handle();
  return std::make_unique<FileLocks>(LockFileOf(sqlite3_db_filename(file, "main")));
}

}  // namespace Velora::Store
