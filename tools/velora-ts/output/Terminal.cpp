#include "output/Terminal.h"

#include <VeloraSystem/Console.h>
#include <VeloraText/Character.h>
#include <VeloraText/Wrapped.h>

#include <charconv>
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
  return System::TerminalWidth().value_or(usualWidth);
}

bool Has(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

Terminal::Terminal() {
  if (System::IsTerminal(System::Standard::Output)) {
    width = WidthOfTerminal();
    colours = !Has("NO_COLOR") && System::TakesEscapes(System::Standard::Output);
  }
}

std::string Cut(std::string_view printable, std::size_t width) {
  if (printable.size() <= width || WidthOf(printable) <= width) {
    return std::string(printable);
  }
  std::size_t kept = 0;
  std::size_t columns = 0;
  while (width > 0 && kept < printable.size()) {
    const Character character(printable.substr(kept));
    columns += WidthOf(printable.substr(kept, character.length));
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
