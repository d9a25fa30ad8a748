#pragma once

#include <string>

namespace Velora::System {

/// Waits until the names in the folder of a file are on the disk: without this, a loss of power could undo a new one.
/// File systems that do not need it answer EINVAL. @return whether they are; if not, errno says why.
bool SyncFolderOf(const std::string& path);

}  // namespace Velora::System
