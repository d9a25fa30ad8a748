// The activities file: versions with names that no other has, or what is wrong in which line.

#include "ActivitiesFile.h"
#include "Xml.h"

#include <map>
#include <set>

using namespace Quor::TolvaServices;
using Versions = std::vector<Types::ActivityVersion>;

namespace {

void RequireOneMeaning(const Versions& versions) {
  std::set<std::string> names;
  std::map<std::string, std::string> activities;
  for (const Types::ActivityVersion& version : versions) {
    const Types::Activity& activity = version.Activity;
    Require(!version.Name.empty() && names.insert(version.Name).second, "one version has the name " + version.Name);
    Require(!version.Version.empty(), "there is a version of " + version.Name);
    Require(!activity.Name.empty() &&
                activities.emplace(activity.Name, activity.Description).first->second == activity.Description,
            "one activity has the name " + activity.Name);
    Require(version.Id == Types::Tsid() && activity.Id == Types::Tsid(), "identities are given later");
  }
}

std::string Written(const Versions& versions) {
  RequireOneMeaning(versions);
  std::string text = "<Activities>";
  for (std::size_t i = 0; i < versions.size(); ++i) {
    const Types::ActivityVersion& version = versions[i];
    if (i == 0 || versions[i - 1].Activity.Name != version.Activity.Name) {
      text += (i == 0 ? "<Activity" : "</Activity><Activity") + Attribute("Name", version.Activity.Name) +
              Attribute("Description", version.Activity.Description) + '>';
    }
    text += "<ActivityVersion" + Attribute("Name", version.Name) + Attribute("Version", version.Version) +
            Attribute("Description", version.Description) + "/>";
  }
  return text + (versions.empty() ? "" : "</Activity>") + "</Activities>";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ReadTwice("activities.xml", std::string(data, data + size), Local::ReadActivitiesFile, Written);
}
