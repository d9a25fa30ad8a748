#pragma once

#include "store/values/StoredTime.h"

#include <chrono>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// How far local clocks are ahead of UTC at a time.
std::chrono::seconds LocalOffset(Store::Time time);

/// A stored time as local time with its offset from UTC. A text that is not a time is only made printable.
/// @param fractions whether to show milliseconds.
std::string LocalTime(std::string_view stored, bool fractions);

/// A duration as hours, minutes and seconds, for example "0:41:10".
/// @param fractions whether to show milliseconds.
std::string Duration(double seconds, bool fractions);

}  // namespace Velora::Ts
