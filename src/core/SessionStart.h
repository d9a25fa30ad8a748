#pragma once

namespace Quor::Velora::Infra::TsLogging {

/// Begins a TS session and, once it has begun, forgets every pending event.
void StartTsSession();

}  // namespace Quor::Velora::Infra::TsLogging
