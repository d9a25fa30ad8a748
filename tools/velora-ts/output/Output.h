#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Ts {

/// Takes what is written, piece by piece. @throws Error when it cannot be written.
using Sink = std::function<void(std::string_view piece)>;

// Everything that the program writes goes through here.

/// Writes a line to standard output for a person. Control characters in it are made visible, so that no recorded text
/// can steer a terminal.
/// @throws Error when standard output cannot be written.
void Say(std::string_view line);
/// Says a line for each of some words, all with the same beginning.
void SayEach(const std::string& beginning, const std::vector<std::string>& words);
/// Writes a line to standard error for a person, with control characters made visible.
void Complain(std::string_view line);

/// Writes text to standard output as it is. It must be printable; it may contain colours.
/// @throws Error when standard output cannot be written.
void WriteOut(std::string_view text);
/// Writes an export to standard output. Only if that is a terminal, control characters are made visible.
/// @throws Error when standard output cannot be written.
void WriteData(std::string_view text);
/// Writes out what standard output has buffered.
/// @throws Error when standard output cannot be written.
void FlushOut();

}  // namespace Velora::Ts
