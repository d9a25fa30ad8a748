#include "output/Wrapped.h"

#include "output/Terminal.h"

#include <VeloraText/Character.h>

#include <algorithm>

namespace Velora::Ts {

namespace {

constexpr std::size_t furtherIndent = 2;
constexpr std::size_t narrow = 24;  // columns of a terminal that has no room for indents

/// The bytes of the longest beginning that is not wider than `width`, but at least one character.
std::size_t Fitting(std::string_view text, std::size_t width) {
  std::size_t bytes = 0;
  for (std::size_t used = 0; bytes < text.size();) {
    const Text::Character character(text.substr(bytes));
    used += WidthOf(text.substr(bytes, character.length));
    if (bytes > 0 && used > width) {
      break;
    }
    bytes += character.length;
  }
  return bytes;
}

}  // namespace

std::string Wrapped(std::string_view printable, std::size_t width, std::size_t indent) {
  std::string lines;
  for (bool first = true; first || !printable.empty(); first = false) {
    const std::size_t blanks = width < narrow ? 0 : indent + (first ? 0 : furtherIndent);
    std::size_t length = Fitting(printable, width - blanks);
    if (length < printable.size()) {
      const std::size_t blank = printable.rfind(' ', length);
      length = blank == std::string_view::npos || blank == 0 ? length : blank;
    }
    const std::string_view line = printable.substr(0, length);
    lines += std::string(blanks, ' ').append(line.substr(0, line.find_last_not_of(' ') + 1)) + '\n';
    printable.remove_prefix(length);
    printable.remove_prefix(std::min(printable.find_first_not_of(' '), printable.size()));
  }
  return lines;
}

}  // namespace Velora::Ts
