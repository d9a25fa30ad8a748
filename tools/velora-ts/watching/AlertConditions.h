#pragma once

#include "asking/RangeArgument.h"
#include "store/values/StoredTime.h"
#include "watching/Alert.h"

#include <chrono>
#include <optional>
#include <vector>

namespace Velora::Ts {

struct Now;

/// Of what somebody wants to be told, beside stores that cannot be read.
struct WantedAlerts {
  bool stopped = false;                        ///< A run of an instrument has stopped.
  std::optional<std::chrono::seconds> silent;  ///< A run is not finished, and nothing was recorded for that long.
  std::optional<std::chrono::seconds> behind;  ///< A row has waited for forwarding for that long.
  std::vector<ExpectedRange> outside;          ///< The newest number of an unfinished run is not in its range.
};

/// The conditions that are wanted, with what stores say of them.
/// @param time the present one.
std::vector<AlertCondition> ConditionsOf(const Now& now, const WantedAlerts& wanted, Store::Time time);

}  // namespace Velora::Ts
