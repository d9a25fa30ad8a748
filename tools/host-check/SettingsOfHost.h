#pragma once

#include "host-check/HostCheck.h"

#include <string>

namespace Velora::HostCheck {

/// The folder from which a host takes its files: its current directory, or else the folder of the library.
/// @throws Error when neither has both TSAL.config and the activities file, or when the host cannot use the library in
/// its folder; the text says why.
std::string FolderOfSettings(const HostStart& start);

}  // namespace Velora::HostCheck
