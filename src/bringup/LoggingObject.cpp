#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/TraceScope.h"

#include <mutex>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

std::shared_ptr<ITsLogging> TsLogging::GetInstance() {
  const TraceScope scope(traceSource, Operation::getInstance);
  const std::lock_guard lock(instanceMutex);
  if (!instanceSlot) {
    instanceSlot = std::make_shared<TsLogging>();
    // Always for the default file, whichever one bring-up was given. A raise leaves the new object in its slot.
    if (!CheckTsServiceAvailability(defaultActivitiesFile)) {
      scope.WriteWarning(tsNotSupported);
    }
  }
  return instanceSlot;  // read again: the check may have called a gateway that put another object there
}

void TsLogging::CreateInstanceIfNone() {
  const std::lock_guard lock(instanceMutex);
  if (!instanceSlot) {
    instanceSlot = std::make_shared<TsLogging>();
  }
}

void TsLogging::SetInstance(std::shared_ptr<ITsLogging> instance) {
  const TraceScope scope(traceSource, Operation::setInstance);
  const std::lock_guard lock(instanceMutex);
  // A move assignment swaps before it releases: the old object goes under the lock, and finds the new one in place.
  instanceSlot = std::move(instance);
}

void TsLogging::SetTolvaServicesInstance(std::shared_ptr<ITolvaServicesClass> gateway) {
  const TraceScope scope(traceSource, Operation::setTolvaServicesInstance);
  const std::lock_guard lock(instanceMutex);
  SetTolvaServicesClass(std::move(gateway));
}

}  // namespace Quor::Velora::Infra::TsLogging
