#include "StoredNumber.h"

#include <array>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace Quor::TolvaServices::Local {

std::string WrittenWhereNoColumnHolds(double value) {
  if (std::isnan(value)) {
    std::array<char, 32> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "NaN:%016" PRIx64, std::bit_cast<std::uint64_t>(value)));
    return text.data();
  }
  return value == 0.0 && std::signbit(value) ? "-0.0" : "";
}

}  // namespace Quor::TolvaServices::Local
