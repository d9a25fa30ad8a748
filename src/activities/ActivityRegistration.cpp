#include "activities/ActivityRegistration.h"

#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"

namespace Quor::Velora::Infra::TsLogging {

void TsLogging::RegisterActivitiesFile(const std::string& activitiesFilePath) {
  activityVersions = GetTolvaServicesClass()->RegisterAndGetActivityVersions(activitiesFilePath);
}

const TolvaServices::Types::ActivityVersion& LookUpActivityVersion(const std::string& name) {
  return activityVersions[name];
}

}  // namespace Quor::Velora::Infra::TsLogging
