#pragma once

#include <VeloraSystem/Failure.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace Velora::System {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// The kind of the object that a path leads to, with links followed: "a FIFO", for example. Empty if it is a regular
/// file or does not exist.
std::string KindOfNoFile(const std::filesystem::path& path);

/// Opens a file, or what else has the name, for reading. On Windows others can write, rename and delete it meanwhile,
/// and a program that has it for itself gets a moment to finish.
/// @throws Failure
File OpenToRead(const std::string& path);
/// Opens a regular file for reading. It never waits, as the opening of a FIFO would.
/// @throws Failure also if the path does not lead to a regular file.
File OpenRegularFile(const std::string& path);

/// Makes a file without a name, which is gone when it is closed.
/// @throws Failure
File OpenTemporary();

}  // namespace Velora::System
