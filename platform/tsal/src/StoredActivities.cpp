#include "StoredActivities.h"

#include "store/values/Guid.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

namespace {

// A guid that was given, or a new one for an unset identity.
std::string GuidToStore(const std::string& given, const char* what) {
  return given.empty() ? NewGuid() : GuidOf(given, what);
}

long long FindOrAddActivity(Writer& store, const Types::ns1__ActivityVersion& wire) {
  const std::string name = ToStoredText(wire.ActivityName);
  const std::string description = ToStoredText(wire.ActivityDescription);
  if (const auto row = store.Sql().Find<long long>(
          "SELECT activity_id FROM activities WHERE name = ?1 AND description = ?2", name, description)) {
    return *row;
  }
  const std::string guid = GuidToStore(wire.ActivityGuid, "activity");
  const long long row = store.NextKey("activities", "activity_id");
  store.Sql().Run("INSERT INTO activities (activity_id, guid, name, description) VALUES (?1, ?2, ?3, ?4)", row, guid,
                  name, description);
  return row;
}

long long FindOrAddVersion(Writer& store, const Types::ns1__ActivityVersion& wire) {
  const long long activity = FindOrAddActivity(store, wire);
  const std::string name = ToStoredText(wire.Name);
  const std::string version = ToStoredText(wire.Version);
  const std::string description = ToStoredText(wire.Description);
  if (const auto row = store.Sql().Find<long long>(
          "SELECT version_id FROM activity_versions WHERE activity_id = ?1 AND name = ?2 AND version = ?3 "
          "AND description = ?4",
          activity, name, version, description)) {
    return *row;
  }
  const std::string guid = GuidToStore(wire.Guid, "activity version");
  const long long row = store.NextKey("activity_versions", "version_id");
  store.Sql().Run(
      "INSERT INTO activity_versions (version_id, guid, activity_id, name, version, description) "
      "VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
      row, guid, activity, name, version, description);
  return row;
}

}  // namespace

std::optional<long long> VersionRow(Writer& store, const Types::ActivityVersion& version) {
  if (version.Id == Types::Tsid()) {
    return std::nullopt;
  }
  const std::string guid = GuidOf(version.Id.GetGuid(), "activity version");
  if (const auto row = store.Sql().Find<long long>("SELECT version_id FROM activity_versions WHERE guid = ?1", guid)) {
    return row;
  }
  store.HoldActivities();
  return FindOrAddVersion(store, version.ToGsoap());
}

Types::ActivityVersion LoadVersion(Connection& sql, long long row) {
  const auto [guid, name, versionText, description, activityGuid, activityName, activityDescription] =
      sql.Find<std::string, std::string, std::string, std::string, std::string, std::string, std::string>(
             "SELECT v.guid, v.name, v.version, v.description, a.guid, a.name, a.description FROM activity_versions v "
             "JOIN activities a ON a.activity_id = v.activity_id WHERE v.version_id = ?1",
             row)
          .value();
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

std::map<std::string, Types::ActivityVersion> RegisterVersions(Writer& store, long long session,
                                                               const std::string& file,
                                                               const std::vector<DescribedVersion>& versions) {
  const std::string storedFile = ToStoredText(file);
  const std::string now = ToStoredTime(Now());
  std::map<std::string, Types::ActivityVersion> registered;
  Transaction transaction(store);
  store.HoldActivities();
  for (const auto& [activity, activityDescription, name, version, description] : versions) {
    const long long row = FindOrAddVersion(store, {"", name, version, description, "", activity, activityDescription});
    store.Sql().Run("INSERT INTO registrations (session_id, version_id, file, registered_at) VALUES (?1, ?2, ?3, ?4)",
                    session, row, storedFile, now);
    registered[name] = LoadVersion(store.Sql(), row);
  }
  transaction.Commit();
  return registered;
}

}  // namespace Quor::TolvaServices::Local
