#include "HostsGateway.h"

#include "Immortal.h"

namespace Velora::CInterface {
namespace {

Immortal<std::weak_ptr<ITolvaServicesClass>> known;

}  // namespace

void RememberHostsGateway(const std::shared_ptr<ITolvaServicesClass>& gateway) noexcept { known.object = gateway; }

std::shared_ptr<ITolvaServicesClass> HostsGateway() noexcept { return known.object.lock(); }

}  // namespace Velora::CInterface
