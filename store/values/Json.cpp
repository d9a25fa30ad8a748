#include "store/values/Json.h"

#include <VeloraText/Character.h>

#include <array>
#include <charconv>
#include <cmath>

namespace Velora::Store {
namespace {

constexpr double exactWhole = 9007199254740992.0;

constexpr std::array<bool, 256> isPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x7F; ++byte) {
    plain[byte] = byte != '"' && byte != '\\';
  }
  return plain;
}();

// The length of the beginning of a text that is ASCII and needs no escapes.
std::size_t PlainLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && isPlain[static_cast<unsigned char>(text[length])]) {
    ++length;
  }
  return length;
}

}  // namespace

void AppendHex(std::string& json, char character) {
  static constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(character);
  json += digits[byte >> 4U];
  json += digits[byte & 15U];
}

void AppendText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    const std::size_t plain = PlainLength(text);
    json += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) {
      break;
    }
    const char first = text.front();
    std::size_t length = 1;
    if (first == '"' || first == '\\') {
      json += '\\';
      json += first;
    } else if (static_cast<unsigned char>(first) < 0x20) {
      json += "\\u00";
      AppendHex(json, first);
    } else if (length = Text::SequenceLength(text); length > 0) {
      json += text.substr(0, length);
    } else {
      json += "\\udc";
      AppendHex(json, first);
      length = 1;
    }
    text.remove_prefix(length);
  }
  json += '"';
}

void AppendInteger(std::string& json, long long number) {
  std::array<char, 20> digits{};
  json.append(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
}

void AppendNumber(std::string& json, double number) {
  if (std::isinf(number)) {
    json += number > 0 ? "1e999" : "-1e999";
    return;
  }
  std::array<char, 32> text{};
  const bool whole =
      std::abs(number) < exactWhole && std::trunc(number) == number && (number != 0 || !std::signbit(number));
  const auto written = whole ? std::to_chars(text.begin(), text.end(), static_cast<long long>(number))
                             : std::to_chars(text.begin(), text.end(), number);
  json.append(text.data(), written.ptr);
}

void AppendServerNumber(std::string& json, double number) {
  if (std::isinf(number)) {
    json += number < 0 ? R"("-infinity")" : R"("infinity")";
  } else {
    AppendNumber(json, number);
  }
}

void AppendBlob(std::string& json, std::string_view bytes) {
  json += "{\"blob\":\"";
  for (const char byte : bytes) {
    AppendHex(json, byte);
  }
  json += "\"}";
}

}  // namespace Velora::Store
