#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace Velora::Http {

/// A text with the letters of ASCII in lower case.
inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
  });
  return lower;
}

}  // namespace Velora::Http
