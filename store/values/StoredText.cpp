#include "store/values/StoredText.h"

#include <VeloraText/Character.h>

#include <charconv>

namespace Velora::Store {

using Text::SequenceLength;

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

}  // namespace Velora::Store
