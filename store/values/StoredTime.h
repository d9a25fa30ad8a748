#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// How times stand in the store's columns: UTC, "2026-11-24T21:55:03.123456Z". Texts in this form sort by time.

namespace Velora::Store {

/// A point in time, without leap seconds.
using Time = std::chrono::sys_time<std::chrono::microseconds>;

/// The current time of the system's clock.
Time Now();

/// @throws Error for a time outside the years 0 to 9999.
std::string ToStoredTime(Time time);
/// @throws Error for a text of another form.
Time FromStoredTime(const std::string& stored);

/// A stored time, or its beginning, in microseconds since 1970; nothing for what only another program can have stored.
std::optional<long long> Microseconds(std::string_view stored);
/// From one stored time to another; nothing when either cannot be read.
std::optional<double> SecondsBetween(std::string_view from, std::string_view to);

}  // namespace Velora::Store
