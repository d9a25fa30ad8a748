#pragma once

#include <cstdint>
#include <string>

namespace Velora::Store {

/// The largest file that is read. No person writes larger settings, activities or instrument configurations.
inline constexpr std::uintmax_t largestFile = std::uintmax_t{64} * 1024 * 1024;

/// The content of a regular file, or of the file to which a link leads.
/// @param limit the largest size in bytes that is accepted.
/// @throws Error, naming the file, when it cannot be read, is not a regular file, or is larger.
std::string ReadWholeFile(const std::string& path, std::uintmax_t limit = largestFile);

}  // namespace Velora::Store
