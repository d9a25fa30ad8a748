#pragma once

#include <chrono>

// Local clocks are those of the system's zone. On Linux TZ can name another one. On Windows it does not count: programs
// that come from elsewhere set it to names that the C library there takes for UTC, and other forms have no rules.

namespace Velora::System {

/// How far local clocks are ahead of UTC at a moment.
std::chrono::seconds LocalOffset(std::chrono::sys_seconds moment);

/// How far they are ahead of UTC when they show a time for the first time. Before a time that they skip, they are still
/// as they were.
/// @param shown the time that they show, as if they showed UTC.
std::chrono::seconds OffsetOfClockTime(std::chrono::sys_seconds shown);

}  // namespace Velora::System
