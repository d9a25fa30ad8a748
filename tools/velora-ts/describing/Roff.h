#pragma once

#include <string>
#include <string_view>

namespace Velora::Ts::Describing::Roff {

// Texts of a manual page, in the language of groff and mandoc.

/// A text as it is: each character is shown as it stands, so that an option can be copied from the page.
std::string Plain(std::string_view text);
std::string Bold(std::string_view text);
std::string Italic(std::string_view text);

/// A line for each sentence, as pages are written. @param text what the others made.
std::string Sentences(std::string_view text);

/// Commands, a line each.
std::string Example(std::string_view commands);

}  // namespace Velora::Ts::Describing::Roff
