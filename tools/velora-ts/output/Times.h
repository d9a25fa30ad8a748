#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// A time as it is stored, or its beginning, in microseconds since 1970; nothing for what only another program can have
/// stored.
std::optional<long long> Microseconds(std::string_view stored);

/// The same for a reader: local, with its distance from UTC. @param fractions whether to show milliseconds.
std::string LocalTime(std::string_view stored, bool fractions);

/// From one stored time to another; nothing when either is none.
std::optional<double> SecondsBetween(std::string_view from, std::string_view to);
/// Hours, minutes and seconds. @param fractions whether to show milliseconds.
std::string Duration(double seconds, bool fractions);

}  // namespace Velora::Ts
