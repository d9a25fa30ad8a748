#include "store/comparing/Value.h"

#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velora::Store {

namespace {

enum Column { Position, Name, Kind, Text, Number };

// Rounding makes 1.5 and 1.4 differ by a little more than 0.1.
constexpr double rounding = 4 * std::numeric_limits<double>::epsilon();

}  // namespace

Value ValueAt(const Rows& parameters) {
  ExpectShowable(parameters);
  Value value;
  AppendParameterValue(value.json, parameters);
  if (AppendValueInWords(value.words, parameters)) {
    value.number = NumberIn(parameters.Text(Text));
  } else if (!parameters.IsNull(Text)) {
    value.number = parameters.Text(Text) == "-0.0" ? 0 : std::numeric_limits<double>::quiet_NaN();
  } else if (!parameters.IsNull(Number)) {
    value.number = parameters.Number(Number);
  }
  return value;
}

Value ValueOf(const std::string& text) {
  Value value;
  AppendText(value.json, text);
  value.words = Readable(text);
  return value;
}

bool Rules::Same(const std::string& parameter, const Value& first, const Value& second) const {
  if (first.json == second.json) {
    return true;
  }
  if (!first.number || !second.number) {
    return false;
  }
  const double one = *first.number, other = *second.number;
  if (one == other || (std::isnan(one) && std::isnan(other))) {
    return true;
  }
  if (!std::isfinite(one) || !std::isfinite(other)) {
    return false;
  }
  const auto found = tolerances.find(parameter);
  const Tolerance& tolerance = found == tolerances.end() ? otherwise : found->second;
  if (tolerance.absolute == 0 && tolerance.relative == 0) {
    return false;
  }
  const double larger = std::max(std::abs(one), std::abs(other));
  return std::abs(one - other) <= std::max(tolerance.absolute, tolerance.relative * larger) + rounding * larger;
}

}  // namespace Velora::Store
