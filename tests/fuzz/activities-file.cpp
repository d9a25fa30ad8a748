// The activities file: versions with names that no other has, or what is wrong in which line.

#include "Xml.h"
#include "store/settings/ActivitiesFile.h"

#include <map>
#include <set>

using Velora::Store::DescribedVersion;
using Versions = std::vector<DescribedVersion>;

namespace {

void RequireOneMeaning(const Versions& versions) {
  std::set<std::string> names;
  std::map<std::string, std::string> activities;
  for (const DescribedVersion& version : versions) {
    Require(!version.name.empty() && names.insert(version.name).second, "one version has the name " + version.name);
    Require(!version.version.empty(), "there is a version of " + version.name);
    Require(
        !version.activity.empty() && activities.emplace(version.activity, version.activityDescription).first->second ==
                                         version.activityDescription,
        "one activity has the name " + version.activity);
  }
}

std::string Written(const Versions& versions) {
  RequireOneMeaning(versions);
  std::string text = "<Activities>";
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const DescribedVersion& version = versions[i];
    if (i == 0 || versions[i - 1].activity != version.activity) {
      text += (i == 0 ? "<Activity" : "</Activity><Activity") + Attribute("Name", version.activity) +
              Attribute("Description", version.activityDescription) + '>';
    }
    text += "<ActivityVersion" + Attribute("Name", version.name) + Attribute("Version", version.version) +
            Attribute("Description", version.description) + "/>";
  }
  return text + (versions.empty() ? "" : "</Activity>") + "</Activities>";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ReadTwice("activities.xml", std::string(data, data + size), Velora::Store::ReadActivitiesFile, Written);
}
