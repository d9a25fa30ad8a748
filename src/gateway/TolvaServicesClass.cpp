#include "gateway/TolvaServicesClass.h"

#include <TSAL/Methods.h>

#include <utility>

namespace Quor::Velora::Infra::TsLogging {

using TolvaServices::Methods::ActivityMethods;
using TolvaServices::Methods::LoggingMethods;
using TolvaServices::Methods::SystemMethods;
using TolvaServices::Types::ActivityExecution;
using TolvaServices::Types::InstrumentEvent;
using TolvaServices::Types::InstrumentEventConfigResult;
using TolvaServices::Types::SessionHandle;
using TolvaServices::Types::Tsid;
using TolvaServices::Types::TSInstance;

void TolvaServicesClass::BeginSession(const std::string& sessionArg1, const std::string& sessionArg2,
                                      const std::string& sessionArg3) {
  TSInstance::BeginSession(sessionArg1, sessionArg2, sessionArg3);
}

void TolvaServicesClass::BeginSession() { TSInstance::BeginSession(); }

void TolvaServicesClass::SetTsalPath(const std::string& path) {
  if (tsalPathSet && path == tsalPath) {
    return;
  }
  std::string handedOver = path;
  TSInstance::SetTsalPath(path);
  // After TSAL has accepted the path; these steps cannot fail.
  tsalPath = std::move(handedOver);
  tsalPathSet = true;
}

bool TolvaServicesClass::IsTsServicePresent() { return TSInstance::IsTsServicePresent(); }

bool TolvaServicesClass::IsConnectable() { return TSInstance::IsConnectable(); }

ActivityVersionMap TolvaServicesClass::RegisterAndGetActivityVersions(const std::string& activitiesFilePath) {
  if (!activityVersionsCached || activitiesFilePath != activityVersionsFile) {
    std::string registeredFile = activitiesFilePath;
    activityVersionsCache = ActivityMethods::RegisterAndGetActivityVersions(activitiesFilePath, SessionHandle::Empty);
    activityVersionsCached = true;
    activityVersionsFile = std::move(registeredFile);
  }
  return activityVersionsCache;
}

ActivityVersionMap TolvaServicesClass::RegisterAndGetActivityVersions() {
  return TolvaServicesClass::RegisterAndGetActivityVersions(std::string());
}

void TolvaServicesClass::SaveActivityExecution(ActivityExecution& execution) {
  ActivityMethods::SaveActivityExecution(execution, SessionHandle::Empty);
}

ActivityExecution TolvaServicesClass::GetActivityExecution(const Tsid& id, bool flag) {
  return ActivityMethods::GetActivityExecution(id, flag, nullptr);
}

std::string TolvaServicesClass::ReadAllTextFromFile(const std::string& path) {
  return TolvaServices::Utils::TypeUtils::ReadAllTextFromFile(path);
}

void TolvaServicesClass::SaveEvent(const InstrumentEvent& event, const Tsid& configurationId,
                                   const Tsid* activityExecutionId) {
  LoggingMethods::SaveEvent(event, configurationId, activityExecutionId, false, SessionHandle::Empty);
}

InstrumentEventConfigResult TolvaServicesClass::SaveInstrumentConfigWithResult(
    const std::string& configurationText, const std::string& text2, const std::string& vendorName,
    const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
    const std::string& modelName) {
  return SystemMethods::SaveInstrumentConfigWithResult(configurationText, text2, vendorName, hostName, optionText,
                                                       instrumentClass, modelName, std::string(), std::string());
}

}  // namespace Quor::Velora::Infra::TsLogging
