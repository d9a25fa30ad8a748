#include "store/recording/ActivityRows.h"

#include "store/recording/Writer.h"
#include "store/schema/StoreNumbers.h"
#include "store/values/Guid.h"

namespace Velora::Store {
namespace {

std::string GuidToStore(const std::string& given, const char* what) {
  return given.empty() ? NewGuid() : GuidOf(given, what);
}

long long FindOrAddActivity(Writer& store, const ActivityVersionRow& version) {
  const std::string& name = version.activityName;
  const std::string& description = version.activityDescription;
  if (const auto key = store.Sql().Find<long long>(
          "SELECT activity_id FROM activities WHERE name = ?1 AND description = ?2 AND " + IsOwn("activity_id"), name,
          description)) {
    return *key;
  }
  const std::string guid = GuidToStore(version.activityGuid, "activity");
  const long long key = store.NextKey("activities", "activity_id");
  store.Sql().Run("INSERT INTO activities (activity_id, guid, name, description) VALUES (?1, ?2, ?3, ?4)", key, guid,
                  name, description);
  return key;
}

ActivityVersionRow ReadVersion(Writer& store, long long key) {
  const auto rows = store.Sql().PrepareShort(std::string("SELECT ") + versionColumns +
                                             " FROM activity_versions v JOIN activities a "
                                             "ON a.activity_id = v.activity_id WHERE v.version_id = ?1");
  BindValues(*rows, key);
  rows->Next();
  return ReadVersionRow(*rows);
}

}  // namespace

ActivityVersionRow ReadVersionRow(const Cursor& rows) {
  const auto text = [&rows](int column) { return std::string(rows.Text(column)); };
  return {rows.Integer(0), text(1), text(2), text(3), text(4), text(5), text(6), text(7)};
}

long long FindOrAddVersion(Writer& store, const ActivityVersionRow& version) {
  const long long activity = FindOrAddActivity(store, version);
  if (const auto key = store.Sql().Find<long long>(
          "SELECT version_id FROM activity_versions WHERE activity_id = ?1 AND name = ?2 AND version = ?3 "
          "AND description = ?4",
          activity, version.name, version.version, version.description)) {
    return *key;
  }
  const std::string guid = GuidToStore(version.guid, "activity version");
  const long long key = store.NextKey("activity_versions", "version_id");
  store.Sql().Run(
      "INSERT INTO activity_versions (version_id, guid, activity_id, name, version, description) "
      "VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
      key, guid, activity, version.name, version.version, version.description);
  return key;
}

std::vector<ActivityVersionRow> RegisterOneByOne(Writer& store, const Registration& registration,
                                                 const std::vector<ActivityVersionRow>& versions) {
  std::vector<ActivityVersionRow> registered;
  for (const ActivityVersionRow& version : versions) {
    const long long key = FindOrAddVersion(store, version);
    store.Sql().Run("INSERT INTO registrations (session_id, version_id, file, registered_at) VALUES (?1, ?2, ?3, ?4)",
                    registration.session, key, registration.file, registration.at);
    registered.push_back(ReadVersion(store, key));
  }
  return registered;
}

}  // namespace Velora::Store
