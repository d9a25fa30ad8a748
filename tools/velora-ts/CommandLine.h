#pragma once

#include "verbs/ExitCode.h"

#include <VeloraCommandLine/Description.h>

#include <string>
#include <vector>

namespace Velora::Ts {

/// Runs the verb that a command line names, or writes the help. A wrong command line is reported on standard error.
/// @return the exit code of the program.
/// @throws std::exception when a store or a file cannot be read or written.
ExitCode RunCommandLine(const std::vector<std::string>& arguments);

/// What RunCommandLine understands.
CommandLine::Description DescribeCommandLine();

}  // namespace Velora::Ts
