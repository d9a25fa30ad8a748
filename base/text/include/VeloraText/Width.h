#pragma once

#include <cstddef>
#include <string_view>

namespace Velora::Text {

/// The number of columns that a printable text takes on a terminal. The systems' own answers differ, so none is asked.
std::size_t WidthOf(std::string_view printable);

}  // namespace Velora::Text
