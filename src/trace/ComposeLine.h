#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace Quor::Velora::Infra::TsLogging {

template <typename Value>
concept LoggedNumber = std::same_as<Value, bool> || std::same_as<Value, double> || std::same_as<Value, std::int32_t>;

/// Appends a number in the form that a narrow stream with the current global locale writes.
template <LoggedNumber Number>
void AppendPiece(std::string& line, Number value);
inline void AppendPiece(std::string& line, std::string_view text) { line += text; }

template <LoggedNumber Number>
constexpr std::size_t RoomFor(Number /*value*/) {
  return 16;  // enough for "-1.79769e+308"; a line grows if the form of a locale is longer
}
inline std::size_t RoomFor(std::string_view text) { return text.size(); }

/// Joins texts and values to one line.
template <typename... Pieces>
std::string ComposeLine(const Pieces&... pieces) {
  std::string line;
  line.reserve((RoomFor(pieces) + ...));
  (AppendPiece(line, pieces), ...);
  return line;
}

}  // namespace Quor::Velora::Infra::TsLogging
