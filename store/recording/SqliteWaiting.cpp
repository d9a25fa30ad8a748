#include "store/recording/SqliteWaiting.h"

#include <sqlite3.h>

namespace Velora::Store {
namespace {

constexpr std::chrono::seconds longestTurn{4};  // the program whose turn it is can be suspended

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

// The first in the queue polls in short steps: a host at full speed that does not use the queue leaves only
// microseconds between two records, which SQLite's own steps of up to a tenth of a second would miss for seconds.
// Others poll slowly: there can be many, and short steps would use up the processor.
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
