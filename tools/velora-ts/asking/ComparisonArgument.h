#pragma once

#include "store/comparing/Comparison.h"

#include <string>
#include <vector>

namespace Velora::Ts {

/// What counts as a difference, from the texts of --tolerance and --ignore.
/// @param tolerances each PARAMETER=0.1, PARAMETER=1%, or 0.1 or 1% for all other parameters.
/// @param ignored names of parameters and events.
/// @throws UsageError when a tolerance is not understood.
Store::ComparisonRules ComparisonArgument(const std::vector<std::string>& tolerances,
                                          const std::vector<std::string>& ignored);

}  // namespace Velora::Ts
