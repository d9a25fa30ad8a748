#include "core/SettingsSearch.h"

#include "core/ProcessState.h"

namespace Quor::Velora::Infra::TsLogging {

SettingsPlace FindSettings(const std::filesystem::path& dataRoot, const std::string& activitiesFile) {
  if (std::filesystem::exists(settingsFileName) && std::filesystem::exists(activitiesFile)) {
    return SettingsPlace::CurrentDirectory;
  }
  if (std::filesystem::exists(dataRoot / settingsFileName) && std::filesystem::exists(dataRoot / activitiesFile)) {
    return SettingsPlace::DataRoot;
  }
  return SettingsPlace::Nowhere;
}

std::string TsalPathOf(SettingsPlace place, const std::filesystem::path& dataRoot) {
  return place == SettingsPlace::CurrentDirectory ? std::string() : dataRoot.string();
}

std::string FileIn(SettingsPlace place, const std::filesystem::path& dataRoot, const std::string& file) {
  return place == SettingsPlace::CurrentDirectory ? file : (dataRoot / file).string();
}

}  // namespace Quor::Velora::Infra::TsLogging
