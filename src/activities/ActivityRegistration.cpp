#include "activities/ActivityRegistration.h"

#include "core/ProcessState.h"
#include "core/TsLogging.h"
#include "gateway/CurrentGateway.h"

namespace Quor::Velora::Infra::TsLogging {

void TsLogging::RegisterActivitiesFile(const std::string& activitiesFilePath) {
  activityVersions = GetTolvaServicesClass()->RegisterAndGetActivityVersions(activitiesFilePath);
}

const TolvaServices::Types::ActivityVersion& LookUpActivityVersion(const std::string& name) {
  return activityVersions[name];
}

}  // namespace Quor::Velora::Infra::TsLogging
