#include "store/recording/SqliteWaiting.h"

#include <sqlite3.h>

namespace Velora::Store {
namespace {

constexpr std::chrono::seconds longestTurn{4};  // whose turn it is may have been stopped

}  // namespace

void SqliteWaiting::Serve(sqlite3* database) {
  sqlite3_busy_handler(
      database, [](void* waiting, int tries) { return static_cast<SqliteWaiting*>(waiting)->WaitAgain(tries) ? 1 : 0; },
      this);
}

void SqliteWaiting::TakeTurn(const std::string& file) {
  const Clock::time_point start = Clock::now();
  turn.emplace(file, longestTurn);
  inQueue = Clock::now() - start;
}

void SqliteWaiting::EndTurn() {
  turn.reset();
  inQueue = {};
}

// In short steps for the first in the queue: between two records of a host at full speed that stands in none there are
// some microseconds, which SQLite's own steps of up to a tenth of a second would miss for seconds on end. Whoever is
// not the first may be one of many, so that short steps would take up the processor.
bool SqliteWaiting::WaitAgain(int tries) {
  const Clock::time_point now = Clock::now();
  if (tries == 0) {
    end = now + longest - inQueue;
  }
  if (now >= end) {
    return false;
  }
  const int step = tries < 100 ? 100 : 1000;  // microseconds
  sqlite3_vfs* const system = sqlite3_vfs_find(nullptr);
  system->xSleep(system, turn && turn->IsOurs() ? step : 10 * step);
  return true;
}

}  // namespace Velora::Store
