#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

// What a program says may have texts in it that come from a file, a database or a command line. On a terminal some
// characters would do something: move what stands there, turn it round, or hide in it.

namespace Velora::Text {

/// A text as it can be shown on one line: a sign stands in the place of what would steer a terminal or is not to be
/// seen, and of a byte that is no part of a character.
std::string Printable(std::string_view text);

/// Writes a line for a person to read.
void WriteLine(std::ostream& stream, std::string_view text);

/// The same for a text of our own that has several lines; each is printable.
void WriteLines(std::ostream& stream, std::string_view text);

}  // namespace Velora::Text
