#pragma once

#include <string>
#include <string_view>

namespace Velora::Ts {

/// A stored time for a person to read: local, with its distance from UTC; what cannot be read as it is, printable.
/// @param fractions whether to show milliseconds.
std::string LocalTime(std::string_view stored, bool fractions);

/// Hours, minutes and seconds. @param fractions whether to show milliseconds.
std::string Duration(double seconds, bool fractions);

}  // namespace Velora::Ts
