#include "store/reading/SettledReader.h"

#include "store/database/DatabaseError.h"
#include "store/database/PostgreSqlConnection.h"
#include "store/recording/Writer.h"
#include "store/schema/Tables.h"

#include <chrono>
#include <thread>

namespace Velora::Store {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{30};
constexpr std::chrono::milliseconds betweenTries{200};  // in which hosts that waited go on
constexpr const char* lockNotAvailable = "55P03";

}  // namespace

// On a server, a row gets its number before others can see it. So the locks wait for the transactions that have begun,
// and hold back others until the state to read is fixed. The tables are in the order in which hosts write them. Hosts
// wait behind a session that waits for a lock, so each wait is short: a program that takes in another store can have a
// transaction of minutes.
Reader SettledReader(const Database& database) {
  if (database.kind == Database::Kind::Sqlite) {
    return Reader(database);
  }
  const auto store = OpenForWriting(database);
  for (const Clock::time_point end = Clock::now() + patience;; std::this_thread::sleep_for(betweenTries)) {
    try {
      const Transaction held(*store);
      store->Sql().RunScript("SET LOCAL lock_timeout = '500ms'; LOCK TABLE " + Listed(RecordedByHosts()) +
                             " IN SHARE MODE");
      const Database there{database.kind, static_cast<PostgreSqlConnection&>(store->Sql()).ServerUri()};
      return Reader(there, store->Sql().Find<std::string>("SELECT pg_export_snapshot()").value());
    } catch (const DatabaseError& error) {
      if (error.code != lockNotAvailable) {
        throw;
      }
      if (Clock::now() > end) {
        throw Error("another program, such as velora-ts copy, has been adding rows to '" + store->Name() +
                    "' for longer than 30 seconds; try again when it has ended");
      }
    }
  }
}

}  // namespace Velora::Store
