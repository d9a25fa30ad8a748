#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// A printable text as lines that are not wider than `width`, each with a line break. Lines break at blanks, and within
/// a word only if it is wider than a line.
/// @param indent the blanks before each line; from the second line on there are two more.
std::string Wrapped(std::string_view printable, std::size_t width, std::size_t indent);

}  // namespace Velora::Ts
