#include "watching/StoreFiles.h"

#include "store/schema/SessionLocks.h"

#include <VeloraSystem/Path.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace Velora::Ts {

using namespace std::chrono_literals;

namespace {

constexpr auto longestTick = 1s;    // of the clock of a file system
constexpr auto longestTrust = 10s;  // what a user may read can have changed

}  // namespace

void StoreFiles::Look() {
  looked = Clock::now();
  if (const Stamps present = StampsNow(); present != stamps) {
    stamps = present;
    since = looked;
  }
}

// What was written in the same tick after a look would look the same.
bool StoreFiles::AreUntouched() const {
  return database.kind == Store::Database::Kind::Sqlite && looked - since > longestTick &&
         Clock::now() - looked < longestTrust && StampsNow() == stamps;
}

// The log, the journal and the locks lie beside the file to which links lead.
StoreFiles::Stamps StoreFiles::StampsNow() const {
  std::error_code unknown;
  const std::string file = System::TextOf(std::filesystem::canonical(System::PathOf(database.where), unknown));
  if (unknown || database.kind != Store::Database::Kind::Sqlite) {
    return {};
  }
  return {System::StampOf(file), System::StampOf(file + "-wal"), System::StampOf(file + "-journal"),
          System::StampOf(Store::LockFileOf(file))};
}

}  // namespace Velora::Ts
