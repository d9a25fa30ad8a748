#pragma once

#include "store/values/StoredTime.h"

#include <TSAL/Types.h>

#include <string>

namespace Quor::TolvaServices::Local {

/// A stated time as the store keeps it; the current one when none is stated.
inline std::string StoredTimeOf(const Types::DateTimeOffset& time) {
  using namespace Velora::Store;
  return ToStoredTime(time.IsStated() ? Time(std::chrono::microseconds(time.Microseconds())) : Now());
}

}  // namespace Quor::TolvaServices::Local
