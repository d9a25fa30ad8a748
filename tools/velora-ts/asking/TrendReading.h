#pragma once

#include "asking/TrendSummary.h"
#include "store/asking/EventWindow.h"

#include <optional>
#include <string>

namespace Velora::Ts {

/// The times of the first and the last event of a window that only limits times, in microseconds; nothing without
/// events.
std::optional<std::pair<long long, long long>> SpanOf(const Store::Reader& store, const Store::EventWindow& window);

/// Reads the numbers of a parameter in a window of events, along the index of times. The sources in the summary have
/// the versions of the executions alone, because the window can say which are above them.
/// @param parameter its name, as stored.
TrendSummary ReadWindow(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter);

}  // namespace Velora::Ts
