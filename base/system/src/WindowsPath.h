#pragma once

#include <string>

namespace Velora::System {

/// The whole path of a file, in the form that the system takes at any length.
std::wstring WholePath(const std::wstring& path);

}  // namespace Velora::System
