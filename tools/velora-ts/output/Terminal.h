#pragma once

#include <VeloraText/Printable.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// What standard output is good for: a pipe or a file takes lines of any length, and no colours.
struct Terminal {
  Terminal();

  /// Whether lines have to be cut at all.
  bool IsNarrow() const { return width < any; }

  static constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
  std::size_t width = any;  ///< Columns of a line.
  bool colours = false;
};

using Velora::Text::Printable;

/// How many columns a printable text takes.
std::size_t WidthOf(std::string_view printable);
/// Its beginning and an ellipsis where it is wider than that.
std::string Cut(std::string_view printable, std::size_t width);

}  // namespace Velora::Ts
