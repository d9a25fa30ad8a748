#include "store/settings/ActivitiesFile.h"

#include "store/settings/XmlFile.h"

#include <set>

namespace Velora::Store {
namespace {

/// Names that must be unique in a file.
class UniqueNames {
 public:
  std::string Take(const XmlFile& xml, const XmlElement& element) {
    std::string name = xml.Required(element, "Name");
    if (!names.insert(name).second) {
      xml.Fail(element, "a second '" + element.name + "' has the name '" + name + "'; expected a unique name");
    }
    return name;
  }

 private:
  std::set<std::string> names;
};

}  // namespace

std::vector<DescribedVersion> ReadActivitiesFile(const std::string& path) {
  const XmlFile xml(path, {{{"Activities", {}}},
                           {{"Activity", {"Name", "Description"}}},
                           {{"ActivityVersion", {"Name", "Version", "Description"}}}});
  UniqueNames activityNames;
  UniqueNames versionNames;
  DescribedVersion one;
  std::vector<DescribedVersion> versions;
  for (const XmlElement& element : xml.Elements()) {
    if (element.name == "Activity") {
      one.activity = activityNames.Take(xml, element);
      one.activityDescription = element.Value("Description");
    } else if (element.name == "ActivityVersion") {
      one.name = versionNames.Take(xml, element);
      one.version = xml.Required(element, "Version");
      one.description = element.Value("Description");
      versions.push_back(one);
    }
  }
  return versions;
}

}  // namespace Velora::Store
