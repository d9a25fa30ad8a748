#include "ParameterValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

namespace {

template <typename Number>
std::optional<Number> WrittenBy(std::string_view text) {
  Number number{};
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) {
    return std::nullopt;
  }
  std::array<char, 64> back{};
  const auto written = std::to_chars(back.data(), back.data() + back.size(), number);
  const std::string_view backText(back.data(), static_cast<std::size_t>(written.ptr - back.data()));
  return backText == text ? std::optional(number) : std::nullopt;
}

}  // namespace

ParameterValue TypedValue(const std::string& text) {
  if (const auto number = WrittenBy<std::int32_t>(text)) {
    return *number;
  }
  if (const auto number = WrittenBy<double>(text); number && std::isfinite(*number)) {
    return *number;
  }
  return text;
}
