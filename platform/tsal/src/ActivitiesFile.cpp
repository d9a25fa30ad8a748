#include "ActivitiesFile.h"

#include "XmlFile.h"

#include <set>
#include <utility>

namespace Quor::TolvaServices::Local {
namespace {

/// Names that may stand once in a file.
class UniqueNames {
 public:
  std::string Take(const XmlFile& xml, const XmlElement& element) {
    std::string name = xml.Required(element, "Name");
    if (!names.insert(name).second) {
      xml.Fail(element, "a second '" + element.name + "' is called '" + name + "'; expected a name that no other has");
    }
    return name;
  }

 private:
  std::set<std::string> names;
};

}  // namespace

std::vector<Types::ActivityVersion> ReadActivitiesFile(const std::string& path) {
  const XmlFile xml(path, {{"Activities", {}},
                           {"Activity", {"Name", "Description"}},
                           {"ActivityVersion", {"Name", "Version", "Description"}}});
  UniqueNames activityNames;
  UniqueNames versionNames;
  Types::Activity activity;
  std::vector<Types::ActivityVersion> versions;
  for (const XmlElement& element : xml.Elements()) {
    if (element.name == "Activity") {
      activity.Name = activityNames.Take(xml, element);
      activity.Description = element.Value("Description");
    } else if (element.name == "ActivityVersion") {
      Types::ActivityVersion version;
      version.Name = versionNames.Take(xml, element);
      version.Version = xml.Required(element, "Version");
      version.Description = element.Value("Description");
      version.Activity = activity;
      versions.push_back(std::move(version));
    }
  }
  return versions;
}

}  // namespace Quor::TolvaServices::Local
