#pragma once

#include "asking/TrendSummary.h"
#include "store/asking/EventWindow.h"
#include "store/reading/KnownStores.h"

#include <string>

namespace Velora::Ts {

/// An empty summary whose cells are narrow enough for the events of a window that only limits times.
TrendSummary SummaryFor(const Store::Reader& store, const Store::EventWindow& window);

/// Reads the numbers of a parameter in a window of events, along the index of times. The sources in the summary have
/// the versions of the executions alone, because the window can say which are above them.
/// @param parameter its name, as stored.
TrendSummary ReadWindow(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter);

/// Reads the numbers of a parameter in the events of some keys.
void ReadKeys(const Store::Reader& store, const Store::KeyRange& keys, const std::string& parameter,
              TrendSummary& summary);

}  // namespace Velora::Ts
