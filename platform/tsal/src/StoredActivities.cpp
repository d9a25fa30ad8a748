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

/// @return null if there is no such version.
template <typename Key>
std::shared_ptr<const VersionRecord> ReadVersion(Connection& sql, const std::string& column, const Key& key) {
  const auto found =
      sql.Find<long long, std::string, std::string, std::string, std::string, std::string, std::string, std::string>(
          "SELECT v.version_id, v.guid, v.name, v.version, v.description, a.guid, a.name, a.description "
          "FROM activity_versions v JOIN activities a ON a.activity_id = v.activity_id WHERE v." +
              column + " = ?1",
          key);
  if (!found) {
    return nullptr;
  }
  const auto& [row, guid, name, versionText, description, activityGuid, activityName, activityDescription] = *found;
  auto read = std::make_shared<VersionRecord>();
  read->row = row;
  read->version.Id = Types::Tsid(guid);
  read->version.Name = FromStoredText(name);
  read->version.Version = FromStoredText(versionText);
  read->version.Description = FromStoredText(description);
  read->version.Activity.Id = Types::Tsid(activityGuid);
  read->version.Activity.Name = FromStoredText(activityName);
  read->version.Activity.Description = FromStoredText(activityDescription);
  return read;
}

}  // namespace

std::shared_ptr<const VersionRecord> FindVersion(OpenStore& store, const std::string& guid) {
  auto version = store.known.Version(guid);
  if (!version && (version = ReadVersion(store.Sql(), "guid", guid))) {
    store.known.Keep(guid, version);
  }
  return version;
}

std::optional<long long> VersionRow(OpenStore& store, const Types::ActivityVersion& version) {
  if (version.Id == Types::Tsid()) {
    return std::nullopt;
  }
  if (const auto found = FindVersion(store, GuidOf(version.Id.GetGuid(), "activity version"))) {
    return found->row;
  }
  store.writer->HoldActivities();
  return FindOrAddVersion(*store.writer, version.ToGsoap());
}

std::map<std::string, Types::ActivityVersion> RegisterVersions(OpenStore& store, long long session,
                                                               const std::string& file,
                                                               const std::vector<DescribedVersion>& versions) {
  const std::string storedFile = ToStoredText(file);
  const std::string now = ToStoredTime(Now());
  std::map<std::string, Types::ActivityVersion> registered;
  std::vector<std::shared_ptr<const VersionRecord>> records;
  Transaction transaction(*store.writer);
  store.writer->HoldActivities();
  for (const auto& [activity, activityDescription, name, version, description] : versions) {
    const long long row =
        FindOrAddVersion(*store.writer, {"", name, version, description, "", activity, activityDescription});
    store.Sql().Run("INSERT INTO registrations (session_id, version_id, file, registered_at) VALUES (?1, ?2, ?3, ?4)",
                    session, row, storedFile, now);
    records.push_back(ReadVersion(store.Sql(), "version_id", row));
    registered[name] = records.back()->version;
  }
  transaction.Commit();
  for (const auto& record : records) {
    store.known.Keep(record->version.Id.GetGuid(), record);
  }
  return registered;
}

}  // namespace Quor::TolvaServices::Local
