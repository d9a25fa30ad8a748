#pragma once

#include <cstdint>
#include <string>

namespace Velora::Store {

/// Larger than any settings, activities or instrument configuration that a person writes.
inline constexpr std::uintmax_t largestFile = std::uintmax_t{64} * 1024 * 1024;

/// The whole content of a regular file, links followed, byte for byte.
/// @param limit the largest size in bytes that is accepted.
/// @throws Error naming the file when it cannot be read, is none, or is larger.
std::string ReadWholeFile(const std::string& path, std::uintmax_t limit = largestFile);

}  // namespace Velora::Store
