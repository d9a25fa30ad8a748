#pragma once

#include <VeloraText/Printable.h>

#include <cstddef>
#include <string>
#include <string_view>

/// What standard output is good for: a pipe or a file takes lines of any length, and no colours.
struct Terminal {
  Terminal();

  std::size_t width;  ///< Columns of a line.
  bool colours;
};

using Velora::Text::Printable;

/// How many columns a printable text takes.
std::size_t WidthOf(std::string_view printable);
/// Its beginning and an ellipsis where it is wider than that.
std::string Cut(std::string_view printable, std::size_t width);
