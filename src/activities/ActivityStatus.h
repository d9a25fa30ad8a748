#pragma once

#include <TSAL/Types.h>

#include <cstdint>

namespace Quor::Velora::Infra::TsLogging {

// TS defines these numbers.
inline constexpr TolvaServices::Types::Enums::ActivityExecStatus createdStatus{4};
inline constexpr TolvaServices::Types::Enums::ActivityExecStatus updatedStatus{14};
inline constexpr std::int32_t topLevelKind = 5;

inline TolvaServices::Types::ActivityExecutionStatus StatusNow(TolvaServices::Types::Enums::ActivityExecStatus code) {
  return {code, TolvaServices::Types::DateTimeOffset::Now()};
}

}  // namespace Quor::Velora::Infra::TsLogging
