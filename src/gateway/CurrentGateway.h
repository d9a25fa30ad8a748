#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <memory>

namespace Quor::Velora::Infra::TsLogging {

/// The gateway of this moment, never empty: without one, a new default gateway. Fetched afresh for every call to TS, so
/// that the call outlives a replacement of the gateway. No TS call runs under the slot's lock.
std::shared_ptr<ITolvaServicesClass> GetTolvaServicesClass();

/// Replaces the gateway; an empty one lets the next call make a default gateway that remembers nothing.
void SetTolvaServicesClass(std::shared_ptr<ITolvaServicesClass> gateway);

}  // namespace Quor::Velora::Infra::TsLogging
