#include "store/reading/ParameterValue.h"

#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <cmath>
#include <limits>

namespace Velora::Store {

namespace {

enum Column { Position, Name, Kind, Text, Number };

bool IsTruth(const Rows& parameters) {
  const double number = parameters.Number(Number);
  return (number == 1 || (number == 0 && !std::signbit(number))) && parameters.IsNumber(Number) &&
         parameters.Whole(Kind) == "bool";
}

}  // namespace

void AppendParameterValue(std::string& json, const Rows& parameters) {
  const bool hasText = !parameters.IsNull(Text);
  if (hasText && !parameters.IsNull(Number)) {  // no host does that; it must not look like either
    json += '[';
    parameters.AppendValue(json, Text);
    json += ',';
    parameters.AppendValue(json, Number);
    json += ']';
  } else if (hasText || !IsTruth(parameters)) {
    parameters.AppendValue(json, hasText ? Text : Number);
  } else {
    json += parameters.Number(Number) == 0 ? "false" : "true";
  }
}

void ExpectShowable(const Rows& parameters) {
  parameters.ExpectShowable(Name);
  parameters.ExpectShowable(Text);
}

bool IsText(const Rows& parameters) {
  if (parameters.IsNull(Text)) {
    return false;
  }
  const std::string_view text = parameters.Text(Text);
  return parameters.Text(Kind) != "double" || (text != "-0.0" && !text.starts_with("NaN:"));
}

std::optional<double> NumberOf(const Rows& parameters) {
  if (parameters.IsNull(Text)) {
    const bool isNumber = parameters.IsNumber(Number) && parameters.Whole(Kind) != "bool";
    return isNumber ? std::optional(parameters.Number(Number)) : std::nullopt;
  }
  if (IsText(parameters)) {
    return NumberIn(parameters.Text(Text));
  }
  return parameters.Text(Text) == "-0.0" ? -0.0 : std::numeric_limits<double>::quiet_NaN();
}

std::string ValueInWords(const Rows& parameters) {
  std::string words;
  AppendValueInWords(words, parameters);
  return words;
}

bool AppendValueInWords(std::string& words, const Rows& parameters) {
  if (IsText(parameters)) {
    AppendReadable(words, parameters.Text(Text));
    return true;
  }
  if (!parameters.IsNull(Text)) {
    words += parameters.Text(Text) == "-0.0" ? "-0.0" : "NaN";
  } else {
    std::string value;
    AppendParameterValue(value, parameters);
    words += value == "1e999" ? "inf" : value == "-1e999" ? "-inf" : value;
  }
  return false;
}

}  // namespace Velora::Store
