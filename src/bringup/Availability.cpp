#include "bringup/SettingsSearch.h"
#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/TraceScope.h"

namespace Quor::Velora::Infra::TsLogging {
namespace {

// The search sets the path in TS and writes an error line if it finds nothing. Only TS decides the result.
bool IsTsConnectable(const TraceScope& scope, const std::string& activitiesFile) {
  const std::filesystem::path dataRoot = TsLogging::GetDataRootDirectory();
  FindSettings(scope, dataRoot, activitiesFile);
  return GetTolvaServicesClass()->IsConnectable();
}

}  // namespace

bool TsLogging::CheckTsServiceAvailability(const std::string& activitiesFile) {
  const TraceScope scope(traceSource, Operation::checkTsServiceAvailability);
  bool usable = GetTolvaServicesClass()->IsTsServicePresent();
  if (usable) {
    try {
      usable = IsTsConnectable(scope, activitiesFile);
    } catch (...) {
      usable = false;  // a host works without TS, too
    }
  }
  tsSupported = usable;
  return usable;
}

}  // namespace Quor::Velora::Infra::TsLogging
