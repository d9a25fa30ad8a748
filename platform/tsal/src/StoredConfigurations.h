#pragma once

#include "OpenStore.h"

#include <TSAL/Types.h>

#include <array>
#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// The nine texts of an instrument configuration, in their order.
using ConfigurationTexts = std::array<std::string, 9>;

Types::InstrumentEventConfigResult StoreConfiguration(OpenStore& store, long long session,
                                                      const std::string& sessionGuid, const ConfigurationTexts& texts);

/// The row of a configuration; none for an unset identity.
/// @throws TsError naming the identity when it is none, or nobody knows it.
std::optional<long long> ConfigurationRow(OpenStore& store, const Types::Tsid& id);

}  // namespace Quor::TolvaServices::Local
