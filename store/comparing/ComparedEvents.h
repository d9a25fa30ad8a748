#pragma once

#include "store/comparing/Comparison.h"

namespace Velora::Store {

/// Visits the events of the executions that are in both runs, and their parameters.
void CompareEvents(const Comparison& comparison, const ComparisonRules& rules, EventStream& first, EventStream& second,
                   const Comparison::Visitor& visit);

}  // namespace Velora::Store
