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
    // Always for the default file, not for the file of the bring-up. An exception leaves the new object in its slot.
    if (!CheckTsServiceAvailability(defaultActivitiesFile)) {
      scope.WriteWarning(tsNotSupported);
    }
  }
  return instanceSlot;  // read again, because a gateway that the check calls can replace the object
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
  // A move assignment swaps before it releases: the old object is released under the lock, with the new one in place.
  instanceSlot = std::move(instance);
}

void TsLogging::SetTolvaServicesInstance(std::shared_ptr<ITolvaServicesClass> gateway) {
  const TraceScope scope(traceSource, Operation::setTolvaServicesInstance);
  const std::lock_guard lock(instanceMutex);
  SetTolvaServicesClass(std::move(gateway));
}

}  // namespace Quor::Velora::Infra::TsLogging
