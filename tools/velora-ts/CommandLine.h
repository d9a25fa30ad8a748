#pragma once

#include "verbs/ExitCode.h"

namespace Velora::Ts {

/// Does what a command line asks for. What is wrong with it is told on standard error.
/// @throws std::exception when a store or a file cannot be read or written.
ExitCode RunCommandLine(int argc, const char* const* argv);

}  // namespace Velora::Ts
