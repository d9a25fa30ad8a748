#pragma once

#include <string>

namespace Velora::System {

/// The system's words for an error.
std::string ReasonOf(unsigned long code);
/// Its words for the error of the call before.
std::string LastReason();

}  // namespace Velora::System
