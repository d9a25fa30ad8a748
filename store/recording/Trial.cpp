#include "store/recording/Trial.h"

#include "store/recording/SessionRow.h"
#include "store/recording/SqliteFiles.h"
#include "store/recording/Writer.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Versions.h"
#include "store/values/Guid.h"
#include "store/values/StoredTime.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/System.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace fs = std::filesystem;

namespace Velora::Store {
namespace {

void ExpectRoomFor(const Database& database) {
  ExpectOwnDisk(database.where);
  const std::string folder = FolderOf(database);
  std::error_code unknown;
  if (!fs::is_directory(System::PathOf(folder), unknown)) {
    throw Error("TS database '" + database.where + "' cannot be made: there is no folder '" + folder +
                "'; expected an existing folder");
  }
  if (!System::TakesNewFiles(folder)) {
    throw Error("TS database '" + database.where + "' cannot be made or written: no file can be made in the folder '" +
                folder + "'; expected the right to write it, because a log is kept beside the database");
  }
}

Trial TryIn(Writer& store, const Settings& settings) {
  Transaction transaction(store);
  const int version = store.BringUpWithin();
  store.MakeRoom();
  const auto newest = store.Sql().Find<std::optional<std::string>>(
      "SELECT MAX(began_at) FROM (SELECT began_at FROM sessions WHERE " + IsOwn("session_id") +
      " ORDER BY session_id DESC LIMIT 1000) AS newest");
  Trial trial{version, "a record was saved and undone", newest.value().value_or("")};
  EventRow event;
  event.session = InsertSession(store, NewGuid(), settings.instrument, {});
  event.name = "trial";
  event.at = ToStoredTime(Now());
  event.parameters.push_back({"trial", "int", std::nullopt, 1.0});
  store.Insert(event);
  if (version == 0) {
    trial.words = "empty; the first host makes the store, which was tried and undone";
  } else if (version < schemaVersion) {
    trial.words += "; the next host that records upgrades the store from version " + std::to_string(version);
  }
  return trial;
}

}  // namespace

Trial TryToRecord(const Settings& settings) {
  const Database& database = settings.database;
  if (database.kind == Database::Kind::Sqlite) {
    ExpectRoomFor(database);
    std::error_code unknown;
    if (!fs::exists(System::PathOf(database.where), unknown)) {
      return {0, "'" + database.where + "' does not exist yet; the first host that records makes it", ""};
    }
  }
  return TryIn(*OpenForWriting(database, Opening::Tries), settings);
}

}  // namespace Velora::Store
