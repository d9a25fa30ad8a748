#include "store/values/RecordedText.h"

#include "store/values/StoredText.h"

#include <VeloraText/Character.h>

#include <charconv>
#include <cmath>

namespace Velora::Store {

namespace {

// Reads all bytes in any case, which is faster for texts that are not long.
bool IsAscii(std::string_view text) {
  unsigned bits = 0;
  bool zero = false;
  for (const char character : text) {
    bits |= static_cast<unsigned char>(character);
    zero |= character == '\0';
  }
  return bits < 0x80 && !zero;
}

}  // namespace

std::string Readable(std::string_view stored) {
  std::string readable;
  AppendReadable(readable, stored);
  return readable;
}

void AppendReadable(std::string& readable, std::string_view stored) {
  if (IsAscii(stored) && !stored.starts_with('\\')) {
    readable += stored;
    return;
  }
  const std::string given = FromStoredText(stored);
  for (std::string_view rest = given; !rest.empty();) {
    const std::size_t length = rest.front() == '\0' ? 0 : Text::SequenceLength(rest);
    readable += length > 0 ? rest.substr(0, length) : "\xEF\xBF\xBD";
    rest.remove_prefix(length > 0 ? length : 1);
  }
}

std::optional<double> NumberIn(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace Velora::Store
