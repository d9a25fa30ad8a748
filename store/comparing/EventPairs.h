#pragma once

#include "store/comparing/EventStream.h"

#include <functional>
#include <utility>
#include <vector>

namespace Velora::Store {

/// Called for two events that belong together, or for one that is alone; the other is null then.
/// @param moved whether the two do not stand in the order of the others.
using OnEvents = std::function<void(const ComparedEvent* first, const ComparedEvent* second, bool moved)>;

/// Finds which events of two executions belong together: those of the same name in the same order. Where one side has
/// more of a name than the other, values decide which are alone (Align()). Of longer executions, `mostWeighed` events
/// of each side are in memory at a time. Then the events are matched in order until their names differ, or until two
/// have less than half of the equal values that those before had: there, the way through these events is sought on
/// which most values are equal.
void PairEvents(EventStream& first, EventStream& second, const Rules& rules, const OnEvents& report);

using Parameters = std::vector<ComparedEvent::Parameter>;

/// How different the values of two lists of parameters are, from 0 to 1. Equal ones count 0, different numbers from a
/// half to 1.
double DistanceOf(const Parameters& ones, const Parameters& others, const Rules& rules);

}  // namespace Velora::Store
