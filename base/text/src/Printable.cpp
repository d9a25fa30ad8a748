#include "VeloraText/Printable.h"

#include "VeloraText/Character.h"

#include <algorithm>
#include <ostream>

namespace Velora::Text {
namespace {

struct Range {
  char32_t first, last;
};

// Controls, the marks that turn the direction of a line or break it, and those without a width. The page of a run has
// the same in page/view/text.js.
constexpr Range steering[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C}, {0x200B, 0x200F},  {0x2028, 0x202E},
                              {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFFD, 0xFFFD}, {0xE0000, 0xE007F}};

bool Steers(char32_t code) {
  return std::any_of(std::begin(steering), std::end(steering),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const Character character(text);
    if (!Steers(character.code)) {
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

std::string WithVisibleZeros(std::string text) {
  for (std::size_t at = 0; (at = text.find('\0', at)) != std::string::npos;) {
    text.replace(at, 1, "\\x00");
  }
  return text;
}

void WriteLine(std::ostream& stream, std::string_view text) { stream << Printable(text) << std::endl; }

void WriteLines(std::ostream& stream, std::string_view text) {
  while (!text.empty()) {
    const std::size_t line = std::min(text.find('\n'), text.size());
    WriteLine(stream, text.substr(0, line));
    text.remove_prefix(std::min(line + 1, text.size()));
  }
}

}  // namespace Velora::Text
