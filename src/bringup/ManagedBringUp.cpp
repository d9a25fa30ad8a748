#include "activities/ParentExecution.h"
#include "bringup/SettingsSearch.h"
#include "bringup/TsSession.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/TraceScope.h"

namespace Quor::Velora::Infra::TsLogging {

std::string TsLogging::SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                             const std::string& sessionArg2, const std::string& sessionArg3,
                                             const std::string& activitiesFile) {
  const TraceScope scope(traceSource, Operation::setParentActivityExec);
  std::string parentBefore = parentActivityExecGuid;
  if (!CheckTsServiceAvailability(activitiesFile)) {
    scope.WriteError(tsNotSupported);
    return parentBefore;
  }
  scope.WriteInfo("Set Parent Activity execution");
  CreateInstanceIfNone();
  const std::filesystem::path dataRoot = GetDataRootDirectory();
  const SettingsPlace place = FindSettings(scope, dataRoot, activitiesFile);
  if (place == SettingsPlace::CurrentDirectory) {
    StartTsSession();
  } else if (place == SettingsPlace::DataRoot) {
    StartTsSession(sessionArg1, sessionArg2, sessionArg3);
  }
  if (place != SettingsPlace::Nowhere) {
    RegisterActivitiesFile(FileIn(place, dataRoot, activitiesFile));
  }
  return CreateParentActivityExecution(node);
}

std::string TsLogging::SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                             const std::string& sessionArg2, const std::string& sessionArg3) {
  return SetParentActivityExec(node, sessionArg1, sessionArg2, sessionArg3, defaultActivitiesFile);
}

}  // namespace Quor::Velora::Infra::TsLogging
