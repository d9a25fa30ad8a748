#pragma once

#include <string>
#include <vector>

namespace Velora::Ts::Describing {

/// A text as one word of a shell.
std::string Quoted(const std::string& text);

/// Words with blanks between them.
std::string Joined(const std::vector<std::string>& words);

/// Puts a text in place of the line "# {NAME}". @throws std::runtime_error when there is no such line.
std::string Filled(const std::string& script, const std::string& name, const std::string& text);

}  // namespace Velora::Ts::Describing
