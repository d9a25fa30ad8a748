#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <memory>

namespace Quor::Velora::Infra::TsLogging {

/// Returns the current gateway. If the slot is empty, a new default gateway is put into it. Fetch the gateway again for
/// every call to TS: the returned reference keeps it alive when it is replaced during the call. The lock of the slot is
/// not held during a call to TS.
std::shared_ptr<ITolvaServicesClass> GetTolvaServicesClass();

/// Replaces the gateway. If it is empty, the next call to TS makes a new default gateway with empty caches.
void SetTolvaServicesClass(std::shared_ptr<ITolvaServicesClass> gateway);

}  // namespace Quor::Velora::Infra::TsLogging
