#include "output/Terminal.h"

#include <VeloraText/Character.h>
#include <VeloraText/Wrapped.h>

#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace Velora::Ts {

using Velora::Text::Character;

namespace {

constexpr std::size_t usualWidth = 80;

std::size_t WidthOfTerminal() {
  if (const char* const told = std::getenv("COLUMNS"); told != nullptr) {
    std::size_t width = 0;
    if (std::from_chars(told, told + std::strlen(told), width).ec == std::errc() && width > 0) {
      return width;
    }
  }
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

bool Has(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

std::size_t WidthOf(const Character& character) {
  static const bool utf8 = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
  return utf8 ? static_cast<std::size_t>(std::max(wcwidth(static_cast<wchar_t>(character.code)), 0)) : 1;
}

}  // namespace

Terminal::Terminal() {
  if (isatty(STDOUT_FILENO) != 0) {
    width = WidthOfTerminal();
    const char* const kind = std::getenv("TERM");
    colours = !Has("NO_COLOR") && kind != nullptr && std::strcmp(kind, "dumb") != 0;
  }
}

std::size_t WidthOf(std::string_view printable) {
  std::size_t width = 0;
  while (!printable.empty()) {
    const Character character(printable);
    width += WidthOf(character);
    printable.remove_prefix(character.length);
  }
  return width;
}

std::string Cut(std::string_view printable, std::size_t width) {
  if (printable.size() <= width || WidthOf(printable) <= width) {
    return std::string(printable);
  }
  std::size_t kept = 0;
  std::size_t columns = 0;
  while (width > 0 && kept < printable.size()) {
    const Character character(printable.substr(kept));
    columns += WidthOf(character);
    if (columns > width - 1) {
      break;
    }
    kept += character.length;
  }
  return std::string(printable.substr(0, kept)) + (width > 0 ? "\u2026" : "");
}

std::vector<std::string> Folded(std::string_view printable, std::size_t width) {
  std::vector<std::string> lines;
  std::istringstream wrapped(Velora::Text::Wrapped(printable, width));
  for (std::string line; std::getline(wrapped, line);) {
    lines.push_back(Cut(line, width));
  }
  return lines;
}

}  // namespace Velora::Ts
