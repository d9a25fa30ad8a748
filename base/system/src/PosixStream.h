#pragma once

#include <VeloraSystem/RegularFile.h>

namespace Velora::System {

/// The stream of a descriptor, which it closes. @throws Failure with errno if the descriptor is negative.
File StreamOf(int descriptor, const char* mode);

}  // namespace Velora::System
