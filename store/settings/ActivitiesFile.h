#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// An activity version as an activities file describes it.
struct DescribedVersion {
  std::string activity;
  std::string activityDescription;
  std::string name;
  std::string version;
  std::string description;
};

/// The activity versions in a file, in their order.
/// @throws Error, naming file and line, when the file cannot be used.
std::vector<DescribedVersion> ReadActivitiesFile(const std::string& path);

}  // namespace Velora::Store
