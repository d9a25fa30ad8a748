#include <VeloraText/Wrapped.h>

#include <algorithm>

namespace Velora::Text {

namespace {

constexpr auto none = std::string_view::npos;

/// Where the lines that continue a line begin; `none` if it stays whole.
std::size_t IndentOf(std::string_view line, std::size_t width) {
  const std::size_t text = std::min(line.find_first_not_of(' '), line.size());
  if (text == 0 || text > width / 4) {  // a paragraph, or the description below a long name
    return text;
  }
  const std::size_t gap = line.find("  ", text);
  return gap == none ? none : line.find_first_not_of(' ', gap);
}

}  // namespace

std::string Wrapped(std::string_view lines, std::size_t width) {
  std::string wrapped;
  while (!lines.empty()) {
    std::string line(lines.substr(0, lines.find('\n')));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    const std::size_t indent = IndentOf(line, width);
    while (indent != none && line.size() > width) {
      const std::size_t end = line.rfind(' ', width);
      if (end == none || end <= indent) {
        break;
      }
      wrapped += line.substr(0, end) + '\n';
      line = std::string(indent, ' ') + line.substr(end + 1);
    }
    wrapped += line + '\n';
  }
  return wrapped;
}

}  // namespace Velora::Text
