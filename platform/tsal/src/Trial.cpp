#include "Trial.h"

#include "Connection.h"
#include "Guid.h"
#include "Schema.h"
#include "Session.h"
#include "Statement.h"

#include <VeloraSystem/System.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace fs = std::filesystem;

namespace Quor::TolvaServices::Local {
namespace {

void ExpectRoomFor(const fs::path& file) {
  const std::string folder = file.parent_path().string();
  std::error_code unknown;
  if (!fs::is_directory(folder, unknown)) {
    throw TsError("TS database '" + file.string() + "' cannot be made: there is no folder '" + folder +
                  "'; expected one");
  }
  if (!Velora::System::TakesNewFiles(folder)) {
    throw TsError("TS database '" + file.string() + "' cannot be made or written: no file can be made in the folder '" +
                  folder + "'; expected the right to write it, since a log is kept beside the database");
  }
}

std::string NewestSession(soci::session& sql) {
  std::string began;
  soci::indicator known = soci::i_null;
  Execute(sql, "SELECT MAX(began_at) FROM sessions", soci::into(began, known));
  return known == soci::i_ok ? began : "";
}

Trial TryIn(Connection& connection, const Settings& settings) {
  Transaction transaction(connection);
  const int version = connection.BringUpWithin();
  connection.MakeRoom();
  Trial trial{version, "a record was saved and taken back", NewestSession(connection.Sql())};
  const long long session = InsertSession(connection, NewGuid(), settings.instrument, {});
  const Types::InstrumentEvent event{
      "trial", {}, {std::make_shared<Types::InstrumentParameterInt>("trial", 1)}, {}, {}};
  connection.Insert(event, session, std::nullopt, std::nullopt);
  if (version == 0) {
    trial.words = "empty; the first host makes the store, which was tried and taken back";
  } else if (version < schemaVersion) {
    trial.words += "; the next host that records brings the store up from version " + std::to_string(version);
  }
  return trial;
}

}  // namespace

Trial TryToRecord(const Settings& settings) {
  const Database& database = settings.database;
  if (database.kind == Database::Kind::Sqlite) {
    ExpectRoomFor(database.where);
    std::error_code unknown;
    if (!fs::exists(database.where, unknown)) {
      return {0, "'" + database.where + "' is not there yet; the first host that records makes it", ""};
    }
  }
  const std::unique_ptr<Connection> connection = OpenConnection(database, Opening::Tries);
  try {
    return TryIn(*connection, settings);
  } catch (const soci::soci_error& reason) {
    throw connection->ErrorOf(reason);
  }
}

}  // namespace Quor::TolvaServices::Local
