#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace Velora::System {

/// The kind of the object that a path leads to, with links followed: "a FIFO", for example. Empty if it is a regular
/// file or does not exist.
std::string KindOfNoFile(const std::filesystem::path& path);

/// Opens a regular file for reading. It never waits, as the opening of a FIFO would.
/// @return null, with errno set, if the path cannot be opened or is not a regular file.
std::FILE* OpenRegularFile(const std::string& path);

}  // namespace Velora::System
