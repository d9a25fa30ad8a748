#include "output/Terminal.h"

#include "StoredText.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>

using Quor::TolvaServices::Local::SequenceLength;

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

// The character at the start of a text, and the bytes that it takes; one byte that is part of none counts as U+FFFD.
struct Character {
  explicit Character(std::string_view text) : length(SequenceLength(text)) {
    if (length == 0) {
      length = 1;
      return;
    }
    code = static_cast<unsigned char>(text[0]);
    if (length > 1) {
      code &= 0x7FU >> length;
      for (std::size_t byte = 1; byte < length; ++byte) {
        code = code << 6U | (static_cast<unsigned char>(text[byte]) & 0x3FU);
      }
    }
  }

  // Controls, also those above ASCII, and the marks that turn the direction of a line or break it.
  bool Steers() const {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x200E && code <= 0x200F) ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x061C || code == 0xFFFD;
  }
  std::size_t Width() const {
    static const bool utf8 = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    return utf8 ? static_cast<std::size_t>(std::max(wcwidth(static_cast<wchar_t>(code)), 0)) : 1;
  }

  std::size_t length;
  unsigned code = 0xFFFD;
};

}  // namespace

Terminal::Terminal() : width(std::numeric_limits<std::size_t>::max()), colours(false) {
  if (isatty(STDOUT_FILENO) != 0) {
    width = WidthOfTerminal();
    const char* const kind = std::getenv("TERM");
    colours = !Has("NO_COLOR") && kind != nullptr && std::strcmp(kind, "dumb") != 0;
  }
}

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const Character character(text);
    if (!character.Steers()) {
      printable += text.substr(0, character.length);
    } else if (character.code < 0x20) {  // the pictures of controls, U+2400 on
      printable += "\xE2\x90";
      printable += static_cast<char>(0x80U + character.code);
    } else {
      printable += "\xEF\xBF\xBD";
    }
    text.remove_prefix(character.length);
  }
  return printable;
}

std::size_t WidthOf(std::string_view printable) {
  std::size_t width = 0;
  while (!printable.empty()) {
    const Character character(printable);
    width += character.Width();
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
    columns += character.Width();
    if (columns > width - 1) {
      break;
    }
    kept += character.length;
  }
  return std::string(printable.substr(0, kept)) + (width > 0 ? "\u2026" : "");
}
