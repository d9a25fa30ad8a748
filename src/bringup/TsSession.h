#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Begins a TS session and, once it has begun, forgets every pending event.
void StartTsSession();

/// The same with three texts of the host's, passed on to TS.
void StartTsSession(const std::string& sessionArg1, const std::string& sessionArg2, const std::string& sessionArg3);

}  // namespace Quor::Velora::Infra::TsLogging
