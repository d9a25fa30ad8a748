#include "ActivitiesFile.h"

#include "XmlFile.h"

#include <set>

namespace Quor::TolvaServices::Local {
namespace {

/// Names that may stand once in a file.
class UniqueNames {
 public:
  std::string Take(const XmlFile& xml, pugi::xml_node element) {
    std::string name = xml.Required(element, "Name");
    if (!names.insert(name).second) {
      xml.Fail(element, "a second '" + std::string(element.name()) + "' is called '" + name +
                            "'; expected a name that no other has");
    }
    return name;
  }

 private:
  std::set<std::string> names;
};

}  // namespace

std::vector<Types::ActivityVersion> ReadActivitiesFile(const std::string& path) {
  const XmlFile xml(path, "Activities");
  xml.ExpectAttributes(xml.Root(), {});
  xml.ExpectElements(xml.Root(), "Activity");
  UniqueNames activityNames;
  UniqueNames versionNames;
  std::vector<Types::ActivityVersion> versions;
  for (const pugi::xml_node activity : xml.Root().children()) {
    xml.ExpectAttributes(activity, {"Name", "Description"});
    xml.ExpectElements(activity, "ActivityVersion");
    const std::string activityName = activityNames.Take(xml, activity);
    for (const pugi::xml_node element : activity.children()) {
      xml.ExpectAttributes(element, {"Name", "Version", "Description"});
      xml.ExpectElements(element, "");
      Types::ActivityVersion version;
      version.Name = versionNames.Take(xml, element);
      version.Version = xml.Required(element, "Version");
      version.Description = element.attribute("Description").value();
      version.Activity.Name = activityName;
      version.Activity.Description = activity.attribute("Description").value();
      versions.push_back(std::move(version));
    }
  }
  return versions;
}

}  // namespace Quor::TolvaServices::Local
