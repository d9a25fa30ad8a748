#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Velora::Ts::Describing {

/// A part of the text that stands beside what the command line says of itself. Blank lines divide the parts:
///
///     # SECTION
///     ## verb                       what follows is about this verb
///     {generated}                   here stands a part that is made
///     A paragraph, in which `runs --json` is of the command line, **word** another word to be typed (with \* for a
///     star), and *NAME* stands for a text.
///     term
///     : what it means
///         an example, indented by four blanks
struct Part {
  enum Kind { Section, Verb, Generated, Paragraph, Definition, Example };
  Kind kind;
  std::string title;  ///< Of a section, a verb or a generated part; the term of a definition.
  std::string text;   ///< Of a paragraph or a definition without line breaks.
};

std::vector<Part> PartsOf(std::string_view prose);

/// The words that are of the command line.
std::vector<std::string> CommandsIn(const std::string& text);

/// A paragraph for a manual page.
std::string AsRoff(const std::string& text);

}  // namespace Velora::Ts::Describing
