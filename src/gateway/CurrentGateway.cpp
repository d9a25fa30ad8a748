#include "gateway/CurrentGateway.h"

#include "gateway/TolvaServicesClass.h"
#include "state/ProcessState.h"

#include <mutex>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

std::shared_ptr<ITolvaServicesClass> GetTolvaServicesClass() {
  const std::lock_guard lock(gatewayMutex);
  if (!currentGateway) {
    currentGateway = std::make_shared<TolvaServicesClass>();
  }
  return currentGateway;
}

void SetTolvaServicesClass(std::shared_ptr<ITolvaServicesClass> gateway) {
  const std::lock_guard lock(gatewayMutex);
  // A move assignment swaps before it releases: the old gateway is released under the lock, with the new one in place.
  currentGateway = std::move(gateway);
}

}  // namespace Quor::Velora::Infra::TsLogging
