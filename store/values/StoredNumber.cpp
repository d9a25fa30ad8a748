#include "store/values/StoredNumber.h"

#include <array>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace Velora::Store {

std::optional<std::string> TextKeptForNumber(double value) {
  if (std::isnan(value)) {
    std::array<char, 32> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "NaN:%016" PRIx64, std::bit_cast<std::uint64_t>(value)));
    return text.data();
  }
  return value == 0.0 && std::signbit(value) ? std::optional<std::string>("-0.0") : std::nullopt;
}

}  // namespace Velora::Store
