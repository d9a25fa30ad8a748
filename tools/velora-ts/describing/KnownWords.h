#pragma once

#include <VeloraCommandLine/Description.h>

#include <string>

namespace Velora::Ts::Describing {

/// Compares a piece of a command line in a text with the program: it begins with its name, a verb or an option.
/// @param verb the verb that the text is about; empty for none.
/// @throws std::runtime_error when it has a verb, an option or a choice that the program does not have.
void ExpectKnown(const std::string& words, const CommandLine::Description& program, const std::string& verb);

}  // namespace Velora::Ts::Describing
