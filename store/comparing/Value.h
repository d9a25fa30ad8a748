#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

namespace Velora::Store {

class Rows;

/// A value to be compared.
struct Value {
  std::string json;              ///< In the form of docs/record-format.md. Equal values have equal texts.
  std::string words;             ///< For a reader; not yet printable.
  std::optional<double> number;  ///< Of numbers, truth values (1 and 0), and texts that read as a number.

  /// Whether it was recorded as a number.
  bool IsNumber() const { return number && !json.starts_with('"') && json != "true" && json != "false"; }
};

/// The value of the parameter at which rows stand (ParameterValue.h).
Value ValueAt(const Rows& parameters);
/// A text that was not recorded as a parameter.
Value ValueOf(const std::string& text);

/// By how much numbers may differ and still count as the same.
struct Tolerance {
  double absolute = 0;
  double relative = 0;  ///< Of the larger of both amounts.
};

/// What counts as a difference.
struct Rules {
  std::map<std::string, Tolerance, std::less<>> tolerances;  ///< By the name of a parameter, as stored.
  Tolerance otherwise;                                       ///< Of all other parameters.
  std::set<std::string, std::less<>> ignored;                ///< Parameters and events, by their names as stored.

  /// Whether two values of a parameter count as the same. How they were recorded does not matter: a text that reads as
  /// a number is the same as that number, and NaN is the same as NaN.
  bool Same(const std::string& parameter, const Value& first, const Value& second) const;
};

}  // namespace Velora::Store
