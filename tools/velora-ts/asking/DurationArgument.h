#pragma once

#include <chrono>
#include <string>

namespace Velora::Ts {

/// How the help of an option for a duration ends.
#define VELORA_DURATION_FORMS "such as 30s, 10m, 1h or 2d"

/// A duration from the command line: a whole number of seconds, minutes, hours or days.
/// @param option its name, for the error.
/// @throws UsageError for another text.
std::chrono::seconds DurationArgument(const std::string& option, const std::string& text);

}  // namespace Velora::Ts
