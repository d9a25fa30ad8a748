#pragma once

#include <filesystem>
#include <string>

namespace Velora::System {

// A narrow text that is a path is UTF-8 on Windows, and any bytes elsewhere. The standard library does not do there: it
// makes a path of a text in the code page, and a text in UTF-8 of a path, and knows neither shares nor the long form.

/// The path that a text names. On Windows a long one is made whole and gets the form that the system takes at any
/// length.
std::filesystem::path PathOf(const std::string& text);
/// The text of a path, without the signs of the long form.
std::string TextOf(const std::filesystem::path& path);

/// A text that names the same file, at any length and in any folder, to libraries that take UTF-8.
std::string AtAnyLength(const std::string& path);

/// A path that is relative to a folder, or absolute.
std::string Joined(const std::string& folder, const std::string& path);
/// A path that stays when the current directory changes. @throws Failure if that is not known.
std::string Absolute(const std::string& path);
/// The path that a program sees of a library that was loaded by this path.
std::string AsLoaded(const std::string& library);

}  // namespace Velora::System
