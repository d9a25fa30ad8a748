#pragma once

#include "store/comparing/Comparison.h"

namespace Velora::Store {

/// Visits the executions of both runs: those that are alone, and order, status, version and duration of the others.
void CompareExecutions(const Comparison& comparison, const ComparisonRules& rules, const Comparison::Visitor& visit);

}  // namespace Velora::Store
