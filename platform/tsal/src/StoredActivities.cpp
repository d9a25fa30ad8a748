#include "StoredActivities.h"

#include "store/schema/StoreNumbers.h"
#include "store/values/Guid.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

namespace {

std::shared_ptr<const VersionRecord> FromStored(const ActivityVersionRow& row) {
  auto read = std::make_shared<VersionRecord>();
  read->row = row.key;
  read->version.Id = Types::Tsid(row.guid);
  read->version.Name = FromStoredText(row.name);
  read->version.Version = FromStoredText(row.version);
  read->version.Description = FromStoredText(row.description);
  read->version.Activity.Id = Types::Tsid(row.activityGuid);
  read->version.Activity.Name = FromStoredText(row.activityName);
  read->version.Activity.Description = FromStoredText(row.activityDescription);
  return read;
}

ActivityVersionRow ToStored(const Types::ns1__ActivityVersion& wire) {
  return {0,
          wire.Guid,
          ToStoredText(wire.Name),
          ToStoredText(wire.Version),
          ToStoredText(wire.Description),
          wire.ActivityGuid,
          ToStoredText(wire.ActivityName),
          ToStoredText(wire.ActivityDescription)};
}

/// @return null if there is no such version.
std::shared_ptr<const VersionRecord> ReadVersion(Connection& sql, const std::string& guid) {
  const auto rows = sql.PrepareShort(std::string("SELECT ") + versionColumns +
                                     " FROM activity_versions v JOIN activities a "
                                     "ON a.activity_id = v.activity_id WHERE v.guid = ?1 AND " +
                                     IsOwn("v.version_id"));
  BindValues(*rows, guid);
  return rows->Next() ? FromStored(ReadVersionRow(*rows)) : nullptr;
}

}  // namespace

std::shared_ptr<const VersionRecord> FindVersion(OpenStore& store, const std::string& guid) {
  auto version = store.known.Version(guid);
  if (!version && (version = ReadVersion(store.Sql(), guid))) {
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
  return FindOrAddVersion(*store.writer, ToStored(version.ToGsoap()));
}

std::map<std::string, Types::ActivityVersion> RegisterVersions(OpenStore& store, long long session,
                                                               const std::string& file,
                                                               const std::vector<DescribedVersion>& versions) {
  std::vector<ActivityVersionRow> described;
  described.reserve(versions.size());
  for (const auto& [activity, activityDescription, name, version, description] : versions) {
    described.push_back(ToStored({"", name, version, description, "", activity, activityDescription}));
  }
  std::vector<std::shared_ptr<const VersionRecord>> records;
  std::map<std::string, Types::ActivityVersion> registered;
  Transaction transaction(*store.writer);
  store.writer->HoldActivities();
  for (const ActivityVersionRow& row :
       store.writer->Register({session, ToStoredText(file), ToStoredTime(Now())}, described)) {
    records.push_back(FromStored(row));
    registered[records.back()->version.Name] = records.back()->version;
  }
  transaction.Commit();
  for (const auto& record : records) {
    store.known.Keep(record->version.Id.GetGuid(), record);
  }
  return registered;
}

}  // namespace Quor::TolvaServices::Local
