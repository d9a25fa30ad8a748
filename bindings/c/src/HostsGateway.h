#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <memory>

namespace Velora::CInterface {

using Quor::Velora::Infra::TsLogging::ITolvaServicesClass;

/// Remembers the gateway that a host put in the place of the component's. Does not keep it alive. Used only inside
/// Boundary, like the next.
void RememberHostsGateway(const std::shared_ptr<ITolvaServicesClass>& gateway) noexcept;
/// The gateway of the host; empty if the component uses its own, or one that a C++ part of the process put there.
std::shared_ptr<ITolvaServicesClass> HostsGateway() noexcept;

}  // namespace Velora::CInterface
