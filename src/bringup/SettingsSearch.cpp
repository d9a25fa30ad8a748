#include "bringup/SettingsSearch.h"

#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "trace/TraceScope.h"

namespace Quor::Velora::Infra::TsLogging {
namespace {

// The data root ends in a separator, so a relative name is appended. The join of the standard library would also work,
// but that of GCC 12 crashes when an allocation fails.
std::filesystem::path Joined(const std::filesystem::path& dataRoot, const std::filesystem::path& file) {
  if (file.has_root_path()) {
    return dataRoot / file;
  }
  std::filesystem::path joined = dataRoot;
  joined += file.native();
  return joined;
}

SettingsPlace Search(const std::filesystem::path& dataRoot, const std::string& activitiesFile) {
  if (std::filesystem::exists(settingsFileName) && std::filesystem::exists(activitiesFile)) {
    return SettingsPlace::CurrentDirectory;
  }
  if (std::filesystem::exists(Joined(dataRoot, settingsFileName)) &&
      std::filesystem::exists(Joined(dataRoot, activitiesFile))) {
    return SettingsPlace::DataRoot;
  }
  return SettingsPlace::Nowhere;
}

}  // namespace

SettingsPlace FindSettings(const TraceScope& scope, const std::filesystem::path& dataRoot,
                           const std::string& activitiesFile) {
  const SettingsPlace place = Search(dataRoot, activitiesFile);
  if (place == SettingsPlace::Nowhere) {
    scope.WriteError("Cannot load TSAL.config file.Please ensure it exists in the correct directory");
    return place;
  }
  const std::string tsalPath = place == SettingsPlace::CurrentDirectory ? std::string() : dataRoot.string();
  GetTolvaServicesClass()->SetTsalPath(tsalPath);
  return place;
}

std::string FileIn(SettingsPlace place, const std::filesystem::path& dataRoot, const std::string& file) {
  return place == SettingsPlace::CurrentDirectory ? file : Joined(dataRoot, file).string();
}

}  // namespace Quor::Velora::Infra::TsLogging
