#pragma once

#include <string>
#include <string_view>

namespace Velora::Text {

/// The lines of a help, at most so many bytes wide if they have blanks. A line that continues is indented as its
/// description, which begins after the first gap of several blanks. Other indented lines, such as commands, stay whole.
std::string Wrapped(std::string_view lines, std::size_t width = 80);

}  // namespace Velora::Text
