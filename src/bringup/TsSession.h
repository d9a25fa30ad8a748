#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Begins a TS session, and then removes all pending events.
void StartTsSession();

/// Begins a TS session with three texts of the host for TS, and then removes all pending events.
void StartTsSession(const std::string& sessionArg1, const std::string& sessionArg2, const std::string& sessionArg3);

}  // namespace Quor::Velora::Infra::TsLogging
