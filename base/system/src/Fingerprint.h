#pragma once

#include <cstdint>
#include <sstream>
#include <string>

namespace Velora::System {

/// Digits that differ if texts differ, and do not tell what the text was.
inline std::string Fingerprint(const std::string& text) {
  std::uint64_t digits = 0xcbf29ce484222325U;  // FNV-1a
  for (const char character : text) {
    digits = (digits ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
  }
  std::ostringstream words;
  words << std::hex << digits;
  return words.str();
}

}  // namespace Velora::System
