#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

// The output of a program can contain texts from a file, a database or a command line. Some characters control a
// terminal: they move or overwrite what it shows, reverse its direction, or are invisible.

namespace Velora::Text {

/// A text in a form that can be shown on one line. A symbol replaces each character that would control a terminal or is
/// invisible, and each byte that is part of no character.
std::string Printable(std::string_view text);

/// A text whose zero bytes are written as "\x00". The text of an exception ends at the first zero byte.
std::string WithVisibleZeros(std::string text);

/// Writes a text, made printable, and a line break.
void WriteLine(std::ostream& stream, std::string_view text);

/// Writes a text of several lines. Each line is made printable; the line breaks between them stay.
void WriteLines(std::ostream& stream, std::string_view text);

}  // namespace Velora::Text
