#pragma once

#include <TSAL/Types.h>

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The registered version of that exact name. An unknown name is added with an empty version; the next registration
/// drops it again.
const TolvaServices::Types::ActivityVersion& LookUpActivityVersion(const std::string& name);

}  // namespace Quor::Velora::Infra::TsLogging
