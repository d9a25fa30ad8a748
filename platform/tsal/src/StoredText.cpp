#include "StoredText.h"

#include <charconv>
#include <cstdint>

namespace Quor::TolvaServices::Local {
namespace {

constexpr std::string_view escape = "\\x";

bool StandsAsItIs(std::string_view text) {
  if (text.substr(0, escape.size()) == escape || text.find('\0') != std::string_view::npos) {
    return false;
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = SequenceLength(text.substr(at));
    if (length == 0) {
      return false;
    }
    at += length;
  }
  return true;
}

}  // namespace

std::size_t SequenceLength(std::string_view rest) {
  const auto byte = [&](std::size_t at) -> std::uint32_t {
    return at < rest.size() ? static_cast<unsigned char>(rest[at]) : 0U;
  };
  const auto continues = [&](std::size_t at) { return (byte(at) & 0xC0U) == 0x80U; };
  const std::uint32_t first = byte(0);
  if (first < 0x80) {
    return 1;
  }
  if (first < 0xE0) {
    return first >= 0xC2 && continues(1) ? 2 : 0;
  }
  if (first < 0xF0) {
    const std::uint32_t point = ((first & 0x0FU) << 12U) | ((byte(1) & 0x3FU) << 6U);
    return continues(1) && continues(2) && point >= 0x800 && (point < 0xD800 || point > 0xDFFF) ? 3 : 0;
  }
  const std::uint32_t point = ((first & 0x07U) << 18U) | ((byte(1) & 0x3FU) << 12U);
  return first < 0xF5 && continues(1) && continues(2) && continues(3) && point >= 0x10000 && point <= 0x10FFFF ? 4 : 0;
}

std::string ToStoredText(std::string_view text) {
  if (StandsAsItIs(text)) {
    return std::string(text);
  }
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string stored(escape);
  stored.reserve(escape.size() + 2 * text.size());
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    stored += digits[byte >> 4U];
    stored += digits[byte & 15U];
  }
  return stored;
}

std::string FromStoredText(std::string_view stored) {
  if (stored.substr(0, escape.size()) != escape) {
    return std::string(stored);
  }
  std::string text;
  text.reserve(stored.size() / 2);
  for (std::size_t at = escape.size(); at + 1 < stored.size(); at += 2) {
    unsigned byte = 0;
    std::from_chars(stored.data() + at, stored.data() + at + 2, byte, 16);
    text += static_cast<char>(byte);
  }
  return text;
}

}  // namespace Quor::TolvaServices::Local
