#include "bringup/SettingsSearch.h"
#include "bringup/TsSession.h"
#include "gateway/CurrentGateway.h"
#include "instrument/InstrumentConfiguration.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/TraceScope.h"

namespace Quor::Velora::Infra::TsLogging {

void TsLogging::CreateTsLoggingSession(const std::string& instrumentConfigFile, const std::string& activitiesFile) {
  const TraceScope scope(traceSource, Operation::createTsLoggingSession);
  if (!CheckTsServiceAvailability(activitiesFile)) {
    return;
  }
  const std::filesystem::path dataRoot = GetDataRootDirectory();
  const SettingsPlace place = FindSettings(scope, dataRoot, activitiesFile);
  if (place == SettingsPlace::Nowhere) {
    return;
  }
  StartTsSession();
  RegisterActivitiesFile(FileIn(place, dataRoot, activitiesFile));
  const std::string configurationPath = FileIn(place, dataRoot, instrumentConfigFile);
  const std::string configurationText = GetTolvaServicesClass()->ReadAllTextFromFile(configurationPath);
  SaveInstrumentConfiguration(configurationText);
}

}  // namespace Quor::Velora::Infra::TsLogging
