#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace Velora::System {

/// What a path leads to, links followed, where that is no regular file: "a FIFO", for example. Empty for a regular file
/// and for what is not there.
std::string KindOfNoFile(const std::filesystem::path& path);

/// Opens a regular file for reading, and never waits, as opening a FIFO would.
/// @return null, with errno set, when it cannot be opened or is none.
std::FILE* OpenRegularFile(const std::string& path);

}  // namespace Velora::System
