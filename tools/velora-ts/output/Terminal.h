#pragma once

#include <VeloraText/Printable.h>
#include <VeloraText/Width.h>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Ts {

/// The width of standard output and whether it shows colours. A pipe or a file takes lines of any length.
struct Terminal {
  Terminal();

  /// Whether lines must be cut.
  bool IsNarrow() const { return width < any; }

  static constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
  std::size_t width = any;  ///< Characters that a line has room for.
  bool colours = false;
};

using Velora::Text::Printable;
using Velora::Text::WidthOf;

/// A printable text; if it is wider than `width` columns, its beginning and an ellipsis.
std::string Cut(std::string_view printable, std::size_t width);
/// The lines of a printable text that is broken at blanks. What has none and is wider than `width` columns is cut.
std::vector<std::string> Folded(std::string_view printable, std::size_t width);

}  // namespace Velora::Ts
