#pragma once

#include "store/database/Cursor.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// Values of statements and rows as C++ types.

namespace Velora::Store {

inline void BindValue(Cursor& cursor, int place, std::string_view value) { cursor.Bind(place, value); }
inline void BindValue(Cursor& cursor, int place, double value) { cursor.Bind(place, value); }
template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
void BindValue(Cursor& cursor, int place, Integer value) {
  cursor.Bind(place, static_cast<long long>(value));
}
template <typename Value>
void BindValue(Cursor& cursor, int place, const std::optional<Value>& value) {
  value ? BindValue(cursor, place, *value) : cursor.Bind(place, nullptr);
}

/// Binds values to ?1, ?2... of a statement.
template <typename... Values>
void BindValues(Cursor& cursor, const Values&... values) {
  int place = 0;
  (BindValue(cursor, ++place, values), ...);
}
inline void BindValues(Cursor& cursor, const std::vector<std::string>& texts) {
  int place = 0;
  for (const std::string& text : texts) {
    BindValue(cursor, ++place, text);
  }
}

/// Reads a value of the current row: an integer, a double, a text, or an optional one for a value that can be NULL.
template <typename Value>
struct ValueIn {
  static Value Read(const Cursor& cursor, int column) {
    if constexpr (std::is_integral_v<Value>) {
      return static_cast<Value>(cursor.Integer(column));
    } else if constexpr (std::is_floating_point_v<Value>) {
      return cursor.Number(column);
    } else {
      return Value(cursor.Text(column));
    }
  }
};
template <typename Value>
struct ValueIn<std::optional<Value>> {
  static std::optional<Value> Read(const Cursor& cursor, int column) {
    return cursor.TypeOf(column) == Cursor::Type::Null ? std::nullopt
                                                       : std::optional<Value>(ValueIn<Value>::Read(cursor, column));
  }
};

template <typename... Values, std::size_t... columns>
std::tuple<Values...> ReadRow(const Cursor& cursor, std::index_sequence<columns...>) {
  return {ValueIn<Values>::Read(cursor, static_cast<int>(columns))...};
}

}  // namespace Velora::Store
