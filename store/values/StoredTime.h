#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// The form of times in the columns of a store: UTC, "2026-11-24T21:55:03.123456Z". Sorted as texts, they are in order.

namespace Velora::Store {

/// A point in time, without leap seconds.
using Time = std::chrono::sys_time<std::chrono::microseconds>;

/// The current time of the system's clock.
Time Now();

/// The stored form of a time. @throws Error for a time outside the years 0 to 9999.
std::string ToStoredTime(Time time);
/// The time of a stored form. @throws Error for another text.
Time FromStoredTime(const std::string& stored);

/// The microseconds from 1970 to a stored time, or to the beginning of one such as "2026-11-24T21". Nothing for another
/// text, which only another program can have stored.
std::optional<long long> Microseconds(std::string_view stored);
/// The seconds from one stored time to another. Nothing if one of the texts is not a time.
std::optional<double> SecondsBetween(std::string_view from, std::string_view to);

}  // namespace Velora::Store
