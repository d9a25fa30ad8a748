#include "serving/http/Target.h"

#include "serving/http/Answer.h"

#include <VeloraText/Character.h>

#include <charconv>
#include <cstddef>
#include <system_error>

namespace Velora::Http {

namespace {

constexpr std::size_t mostParameters = 100;

[[noreturn]] void Refuse(const std::string& why) { throw Refusal(400, "the address " + why); }

char ByteOf(std::string_view digits) {
  unsigned int byte = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
  if (digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size()) {
    Refuse("has a '%' in it that two hexadecimal digits do not follow");
  }
  if (byte == 0) {
    Refuse("has a zero byte in it");
  }
  return static_cast<char>(byte);
}

void ExpectUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Text::SequenceLength(text);
    if (length == 0) {
      Refuse("has bytes in it that are not UTF-8");
    }
    text.remove_prefix(length);
  }
}

/// @param plus what a "+" stands for.
std::string Decoded(std::string_view encoded, char plus) {
  std::string text;
  for (std::size_t at = 0; at < encoded.size(); ++at) {
    if (encoded[at] == '%') {
      text += ByteOf(encoded.substr(at + 1, 2));
      at += 2;
    } else {
      text += encoded[at] == '+' ? plus : encoded[at];
    }
  }
  ExpectUtf8(text);
  return text;
}

/// Takes from a text what stands before a separator, and the separator.
std::string_view TakeUntil(char separator, std::string_view& text) {
  const std::size_t end = text.find(separator);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

}  // namespace

Target ReadTarget(std::string_view target) {
  if (!target.starts_with('/')) {
    Refuse("does not begin with '/'");
  }
  Target read;
  read.path = Decoded(TakeUntil('?', target), '+');
  while (!target.empty()) {
    std::string_view value = TakeUntil('&', target);
    const std::string_view name = TakeUntil('=', value);
    if (!name.empty()) {
      read.parameters.emplace(Decoded(name, ' '), Decoded(value, ' '));
    }
    if (read.parameters.size() > mostParameters) {
      Refuse("has more than " + std::to_string(mostParameters) + " parameters");
    }
  }
  return read;
}

}  // namespace Velora::Http
