#include "Base64.h"

#include <algorithm>

std::string Base64(std::string_view bytes) {
  static constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t here = std::min<std::size_t>(3, bytes.size() - at);
    unsigned group = 0;
    for (std::size_t place = 0; place < 3; ++place) {
      group = group << 8U | (place < here ? static_cast<unsigned char>(bytes[at + place]) : 0U);
    }
    for (unsigned place = 0; place < 4; ++place) {
      text += place > here ? '=' : digits[group >> (18U - 6U * place) & 63U];
    }
  }
  return text;
}
