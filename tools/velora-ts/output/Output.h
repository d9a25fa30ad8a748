#pragma once

#include <string_view>

namespace Velora::Ts {

// Everything that the program writes goes through here.

/// A line for a person to read, on standard output: no text in it steers a terminal. @throws Error when it takes no
/// more.
void Say(std::string_view line);
/// The same on standard error.
void Complain(std::string_view line);

/// Standard output, for lines that are printable and have colours. @throws Error when it takes no more.
void WriteOut(std::string_view text);
/// The same for a format that has texts as they were recorded: on a terminal, without what would steer it.
void WriteData(std::string_view text);
void FlushOut();

}  // namespace Velora::Ts
