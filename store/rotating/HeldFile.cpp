#include "store/rotating/HeldFile.h"

#include <VeloraSystem/Path.h>
#include "store/Error.h"

#include <chrono>
#include <thread>

namespace Velora::Store {
namespace {

constexpr std::chrono::seconds longest{5};  // a reader needs moments; a host keeps the file open

}  // namespace

HeldFile::HeldFile(const std::string& file) : connection(file, System::AtAnyLength(file), SQLITE_OPEN_READWRITE) {
  const auto end = std::chrono::steady_clock::now() + longest;
  while (!Hold()) {
    if (std::chrono::steady_clock::now() > end) {
      throw Error("TS database '" + file + "' is in use; expected that no host records into it and nobody reads it");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

// SQLite turns its log off only while no other connection is open. A host can come between that and the lock; it turns
// the log on again before it records.
bool HeldFile::Hold() {
  try {
    connection.RunScript("PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE");
    if (connection.Find<std::string>("PRAGMA journal_mode") == "delete") {
      return true;
    }
    connection.RunScript("ROLLBACK");
  } catch (const DatabaseError& error) {
    if (!IsBusy(error)) {
      throw;
    }
  }
  return false;
}

}  // namespace Velora::Store
