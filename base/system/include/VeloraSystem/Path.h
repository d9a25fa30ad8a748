#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Velora::System {

// Every narrow text that is a path is UTF-8 here, or on Linux any bytes. The standard library does not agree with
// itself on Windows: it makes a path of a narrow text in the code page, and a narrow text in UTF-8 of a path.

inline std::filesystem::path PathOf(std::string_view text) { return std::u8string(text.begin(), text.end()); }

inline std::string TextOf(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace Velora::System
