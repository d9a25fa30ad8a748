#include "core/SessionStart.h"

#include "core/ProcessState.h"
#include "gateway/CurrentGateway.h"

namespace Quor::Velora::Infra::TsLogging {

void StartTsSession() {
  GetTolvaServicesClass()->BeginSession();
  pendingInstrumentEvents.clear();
}

}  // namespace Quor::Velora::Infra::TsLogging
