#include "bringup/TsSession.h"

#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"

namespace Quor::Velora::Infra::TsLogging {
namespace {

void ClearPendingInstrumentEvents() { pendingInstrumentEvents.clear(); }

}  // namespace

void StartTsSession() {
  GetTolvaServicesClass()->BeginSession();
  ClearPendingInstrumentEvents();
}

void StartTsSession(const std::string& sessionArg1, const std::string& sessionArg2, const std::string& sessionArg3) {
  GetTolvaServicesClass()->BeginSession(sessionArg1, sessionArg2, sessionArg3);
  ClearPendingInstrumentEvents();
}

}  // namespace Quor::Velora::Infra::TsLogging
