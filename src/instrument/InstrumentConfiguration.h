#pragma once

#include <VeloraInfraKivAccess/KivAccess.h>

#include <ostream>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Saves the description of the instrument and of the computer in TS, and keeps the result for later events. An
/// exception leaves the kept result unchanged.
/// @param configurationText the whole text of the instrument configuration file. It is passed on unread.
void SaveInstrumentConfiguration(const std::string& configurationText);

/// Writes the name of a microscope type, or "?" for an unknown type.
std::ostream& operator<<(std::ostream& stream, KivAccess::MicroscopeType type);

}  // namespace Quor::Velora::Infra::TsLogging
