#pragma once

#include <string>

namespace Velora::System {

/// Whether a file is, or would be, on a disk of another computer, as a share or a network drive of Windows shows it.
/// Elsewhere the answer is always no.
bool IsOnShare(const std::string& path);

}  // namespace Velora::System
