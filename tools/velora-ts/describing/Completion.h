#pragma once

#include <VeloraCommandLine/Description.h>

#include <string>

namespace Velora::Ts::Describing {

/// The completion for bash. @param script its functions, with the line "# {tables}" for the tables that they use.
std::string BashCompletion(const CommandLine::Description& program, const std::string& script);

/// The completion for zsh. @param script its functions, with the line "# {verbs}" for the options of each verb.
std::string ZshCompletion(const CommandLine::Description& program, const std::string& script);

}  // namespace Velora::Ts::Describing
