#include "Lines.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace Quor::Velora::Infra::Logging {
namespace {

constexpr bool IsControl(std::uint32_t point) { return point < 32 || point == 127; }

bool NeedsEscape(char character) { return IsControl(static_cast<unsigned char>(character)); }

void AppendEscape(std::string& line, char character) {
  static constexpr std::string_view digits = "0123456789abcdef";
  if (character == '\n') {
    line += "\\n";
  } else if (character == '\r') {
    line += "\\r";
  } else if (character == '\t') {
    line += "\\t";
  } else {
    const auto byte = static_cast<unsigned char>(character);
    line += "\\x";
    line += digits[byte >> 4U];
    line += digits[byte & 15U];
  }
}

// Appends all that stands before an escape in one piece: most texts need none.
void AppendEscaped(std::string& line, std::string_view text) {
  for (auto at = text.begin(); at != text.end();) {
    const auto escape = std::find_if(at, text.end(), NeedsEscape);
    line.append(at, escape);
    at = escape;
    if (at != text.end()) {
      AppendEscape(line, *at++);
    }
  }
}

void AppendUtf8(std::string& line, std::uint32_t point) {
  const auto tail = [&line, point](unsigned shift) { line += static_cast<char>(0x80U | ((point >> shift) & 0x3FU)); };
  if (point < 0x80) {
    line += static_cast<char>(point);
  } else if (point < 0x800) {
    line += static_cast<char>(0xC0U | (point >> 6U));
    tail(0);
  } else if (point < 0x10000) {
    line += static_cast<char>(0xE0U | (point >> 12U));
    tail(6);
    tail(0);
  } else {
    line += static_cast<char>(0xF0U | (point >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::uint32_t Unit(wchar_t character) { return static_cast<std::make_unsigned_t<wchar_t>>(character); }

// Wide characters are UTF-16 on Windows: two of them make one point above the first plane.
std::uint32_t NextPoint(std::wstring_view text, std::size_t& at) {
  const auto first = Unit(text[at++]);
  if (first < 0xD800 || first > 0xDBFF || at == text.size()) {
    return first;
  }
  const auto second = Unit(text[at]);
  if (second < 0xDC00 || second > 0xDFFF) {
    return first;
  }
  ++at;
  return 0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00);
}

}  // namespace

std::string SourceText(const std::wstring& source) {
  std::string text;
  text.reserve(source.size());
  for (std::size_t at = 0; at < source.size();) {
    AppendUtf8(text, NextPoint(source, at));
  }
  return text;
}

std::string LineText(const std::wstring& source, const std::string& message) {
  std::string line;
  line.reserve(source.size() + message.size() + 3);
  line += '[';
  for (std::size_t at = 0; at < source.size();) {
    const std::uint32_t point = NextPoint(source, at);
    IsControl(point) ? AppendEscape(line, static_cast<char>(point)) : AppendUtf8(line, point);
  }
  line += "] ";
  AppendEscaped(line, message);
  return line;
}

}  // namespace Quor::Velora::Infra::Logging
