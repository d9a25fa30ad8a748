#pragma once

#include <string>

namespace Velora::System {

/// The path that another library names by a narrow text, as this code names it. On Windows others use the code page of
/// the process or UTF-8: what is no UTF-8 is in the code page. Elsewhere the bytes stay as they are.
std::string FromNarrow(const std::string& path);

/// Whether a host whose locale is that of its start can make narrow text of a path, as the TS logging library does with
/// its own folder. On Windows it can if no letter is beyond U+00FF.
bool IsNarrow(const std::string& path);

}  // namespace Velora::System
