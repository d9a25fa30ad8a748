#pragma once

#include <VeloraInfraKivAccess/KivAccess.h>

#include <ostream>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Sends what is known of the instrument and the computer to TS, and keeps the answer as the configuration that later
/// events refer to. A raise leaves the kept answer as it was.
/// @param configurationText the whole text of the instrument configuration file, never looked into here.
void SaveInstrumentConfiguration(const std::string& configurationText);

/// Writes the name of a microscope type, "?" for one without a name.
std::ostream& operator<<(std::ostream& stream, KivAccess::MicroscopeType type);

}  // namespace Quor::Velora::Infra::TsLogging
