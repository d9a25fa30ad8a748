#include "StoredActivities.h"

#include "Connection.h"
#include "Guid.h"
#include "Statement.h"
#include "StoredText.h"
#include "StoredTime.h"

#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

// A guid that was given, or a new one for an unset identity.
std::string GuidToStore(const std::string& given, const char* what) {
  return given.empty() ? NewGuid() : GuidOf(Types::Tsid(given), what);
}

long long FindOrAddActivity(Connection& connection, const Types::ns1__ActivityVersion& wire) {
  soci::session& sql = connection.Sql();
  const std::string name = ToStoredText(wire.ActivityName);
  const std::string description = ToStoredText(wire.ActivityDescription);
  long long row = 0;
  if (Execute(sql, "SELECT activity_id FROM activities WHERE name = :name AND description = :description",
              soci::use(name), soci::use(description), soci::into(row))) {
    return row;
  }
  const std::string guid = GuidToStore(wire.ActivityGuid, "activity");
  row = connection.NextKey("activities", "activity_id");
  Execute(sql,
          "INSERT INTO activities (activity_id, guid, name, description) VALUES (:row, :guid, :name, :description)",
          soci::use(row), soci::use(guid), soci::use(name), soci::use(description));
  return row;
}

long long FindOrAddVersion(Connection& connection, const Types::ns1__ActivityVersion& wire) {
  soci::session& sql = connection.Sql();
  const long long activity = FindOrAddActivity(connection, wire);
  const std::string name = ToStoredText(wire.Name);
  const std::string version = ToStoredText(wire.Version);
  const std::string description = ToStoredText(wire.Description);
  long long row = 0;
  if (Execute(sql,
              "SELECT version_id FROM activity_versions WHERE activity_id = :activity AND name = :name "
              "AND version = :version AND description = :description",
              soci::use(activity), soci::use(name), soci::use(version), soci::use(description), soci::into(row))) {
    return row;
  }
  const std::string guid = GuidToStore(wire.Guid, "activity version");
  row = connection.NextKey("activity_versions", "version_id");
  Execute(sql,
          "INSERT INTO activity_versions (version_id, guid, activity_id, name, version, description) "
          "VALUES (:row, :guid, :activity, :name, :version, :description)",
          soci::use(row), soci::use(guid), soci::use(activity), soci::use(name), soci::use(version),
          soci::use(description));
  return row;
}

}  // namespace

std::optional<long long> VersionRow(Connection& connection, const Types::ActivityVersion& version) {
  if (version.Id == Types::Tsid()) {
    return std::nullopt;
  }
  const std::string guid = GuidOf(version.Id, "activity version");
  long long row = 0;
  if (!Execute(connection.Sql(), "SELECT version_id FROM activity_versions WHERE guid = :guid", soci::use(guid),
               soci::into(row))) {
    connection.HoldActivities();
    row = FindOrAddVersion(connection, version.ToGsoap());
  }
  return row;
}

Types::ActivityVersion LoadVersion(soci::session& sql, long long row) {
  std::string guid, name, versionText, description, activityGuid, activityName, activityDescription;
  Execute(sql,
          "SELECT v.guid, v.name, v.version, v.description, a.guid, a.name, a.description FROM activity_versions v "
          "JOIN activities a ON a.activity_id = v.activity_id WHERE v.version_id = :row",
          soci::use(row), soci::into(guid), soci::into(name), soci::into(versionText), soci::into(description),
          soci::into(activityGuid), soci::into(activityName), soci::into(activityDescription));
  Types::ActivityVersion version;
  version.Id = Types::Tsid(guid);
  version.Name = FromStoredText(name);
  version.Version = FromStoredText(versionText);
  version.Description = FromStoredText(description);
  version.Activity.Id = Types::Tsid(activityGuid);
  version.Activity.Name = FromStoredText(activityName);
  version.Activity.Description = FromStoredText(activityDescription);
  return version;
}

std::map<std::string, Types::ActivityVersion> RegisterVersions(Connection& connection, long long session,
                                                               const std::string& file,
                                                               const std::vector<Types::ActivityVersion>& versions) {
  soci::session& sql = connection.Sql();
  const std::string storedFile = ToStoredText(file);
  const std::string now = ToStoredTime({});
  std::map<std::string, Types::ActivityVersion> registered;
  Transaction transaction(connection);
  connection.HoldActivities();
  for (const Types::ActivityVersion& version : versions) {
    const long long row = FindOrAddVersion(connection, version.ToGsoap());
    Execute(sql,
            "INSERT INTO registrations (session_id, version_id, file, registered_at) "
            "VALUES (:session, :version, :file, :at)",
            soci::use(session), soci::use(row), soci::use(storedFile), soci::use(now));
    registered[version.Name] = LoadVersion(sql, row);
  }
  transaction.Commit();
  return registered;
}

}  // namespace Quor::TolvaServices::Local
