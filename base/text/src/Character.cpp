#include "VeloraText/Character.h"

#include <cstdint>

namespace Velora::Text {

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

Character::Character(std::string_view text) : length(SequenceLength(text)) {
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

}  // namespace Velora::Text
