#pragma once

#include "host-check/HostCheck.h"

#include <filesystem>

namespace Velora::HostCheck {

/// The folder from which a host takes its files: its current directory, or else the folder of the library.
/// @throws Error when neither has both TSAL.config and the activities file; the text says which files are missing.
std::filesystem::path FolderOfSettings(const HostStart& start);

}  // namespace Velora::HostCheck
