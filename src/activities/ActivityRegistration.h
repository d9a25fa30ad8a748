#pragma once

#include <TSAL/Types.h>

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Returns the registered version with exactly this name. An unknown name is added to the table with an empty version,
/// until the next registration.
const TolvaServices::Types::ActivityVersion& LookUpActivityVersion(const std::string& name);

}  // namespace Quor::Velora::Infra::TsLogging
