// Registers all versions of a file together: a statement for each of them would be a round trip.

#include "store/recording/PostgreSqlWriter.h"
#include "store/values/Guid.h"
#include "store/values/Json.h"

namespace Velora::Store {
namespace {

std::string AsJson(const std::vector<ActivityVersionRow>& versions) {
  std::string json = "[";
  long long position = 0;
  for (const ActivityVersionRow& version : versions) {
    json += position == 0 ? "{\"position\":" : ",{\"position\":";
    json += std::to_string(++position);
    const auto add = [&json](const char* name, const std::string& text) {
      json += std::string(",\"") + name + "\":";
      AppendText(json, text);
    };
    add("guid", version.guid.empty() ? NewGuid() : version.guid);
    add("name", version.name);
    add("version", version.version);
    add("description", version.description);
    add("activity_guid", version.activityGuid.empty() ? NewGuid() : version.activityGuid);
    add("activity_name", version.activityName);
    add("activity_description", version.activityDescription);
    json += '}';
  }
  return json + ']';
}

#define GIVEN                                                                                                        \
  "json_to_recordset(CAST(?1 AS json)) AS g(position bigint, guid text, name text, version text, description text, " \
  "activity_guid text, activity_name text, activity_description text)"
// Activities of other stores are no matter of a host.
#define ACTIVITY                                                                        \
  " JOIN activities a ON a.activity_id < 10000000000 AND a.name = g.activity_name AND " \
  "a.description = g.activity_description "
#define SAME_VERSION \
  "v.activity_id = a.activity_id AND v.name = g.name AND v.version = g.version AND v.description = g.description"
#define IN_ORDER " ORDER BY g.position"

constexpr const char* addActivities =
    "INSERT INTO activities (guid, name, description) "
    "SELECT activity_guid, activity_name, activity_description FROM (SELECT DISTINCT ON (activity_name, "
    "activity_description) * FROM " GIVEN
    " ORDER BY activity_name, activity_description, position) AS g "
    "WHERE NOT EXISTS (SELECT FROM activities WHERE activity_id < 10000000000 AND name = activity_name AND description "
    "= activity_description)" IN_ORDER;
constexpr const char* addVersions =
    "INSERT INTO activity_versions (guid, activity_id, name, version, description) "
    "SELECT g.guid, a.activity_id, g.name, g.version, g.description FROM " GIVEN ACTIVITY
    "WHERE NOT EXISTS (SELECT FROM activity_versions v WHERE " SAME_VERSION ")" IN_ORDER;
constexpr const char* addRegistrations =
    "INSERT INTO registrations (session_id, version_id, file, registered_at) "
    "SELECT CAST(?2 AS bigint), v.version_id, ?3, ?4 FROM " GIVEN ACTIVITY
    "JOIN activity_versions v ON " SAME_VERSION IN_ORDER;
constexpr const char* versionsFrom = " FROM " GIVEN ACTIVITY "JOIN activity_versions v ON " SAME_VERSION IN_ORDER;

}  // namespace

std::vector<ActivityVersionRow> PostgreSqlWriter::Register(const Registration& registration,
                                                           const std::vector<ActivityVersionRow>& versions) {
  const std::string json = AsJson(versions);
  connection.Run(addActivities, json);
  connection.Run(addVersions, json);
  connection.Run(addRegistrations, json, registration.session, registration.file, registration.at);
  const auto rows = connection.PrepareShort(std::string("SELECT ") + versionColumns + versionsFrom);
  BindValues(*rows, json);
  std::vector<ActivityVersionRow> registered;
  while (rows->Next()) {
    registered.push_back(ReadVersionRow(*rows));
  }
  return registered;
}

}  // namespace Velora::Store
