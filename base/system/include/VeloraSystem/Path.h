#pragma once

#include <filesystem>
#include <string>

namespace Velora::System {

// A narrow text that is a path is UTF-8 on Windows, and any bytes elsewhere. The standard library does not do for it:
// on Windows it makes a path of a text in the code page, and a text in UTF-8 of a path.

/// The path that a text names. On Windows a long one is made whole and gets the form that the system takes at any
/// length.
std::filesystem::path PathOf(const std::string& text);
/// The text of a path, without the signs of the long form.
std::string TextOf(const std::filesystem::path& path);

/// A text that names the same file, at any length and in any folder, to libraries that take UTF-8.
std::string AtAnyLength(const std::string& text);

}  // namespace Velora::System
