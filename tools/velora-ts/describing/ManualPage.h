#pragma once

#include <VeloraCommandLine/Description.h>

#include <string>

namespace Velora::Ts::Describing {

/// The manual page.
/// @param prose what the command line does not say of itself, with {synopsis}, {options} and {verbs} where it does.
/// @throws std::runtime_error when the prose names what the program does not have, or lacks one of these.
std::string ManualPage(const CommandLine::Description& program, const std::string& version, const std::string& prose);

}  // namespace Velora::Ts::Describing
