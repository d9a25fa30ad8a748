#include "store/reading/ParameterValue.h"

#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <cmath>

namespace Velora::Store {

namespace {

enum Column { Position, Name, Kind, Text, Number };

}  // namespace

void AppendParameterValue(std::string& json, const Rows& parameters) {
  const bool hasText = !parameters.IsNull(Text);
  const bool hasNumber = !parameters.IsNull(Number);
  const double number = parameters.Number(Number);
  if (hasText && hasNumber) {  // no host does that; it must not look like either
    json += '[';
    parameters.AppendValue(json, Text);
    json += ',';
    parameters.AppendValue(json, Number);
    json += ']';
  } else if (parameters.IsNumber(Number) && ((number == 0 && !std::signbit(number)) || number == 1) &&
             parameters.Whole(Kind) == "bool") {
    json += number == 0 ? "false" : "true";
  } else {
    parameters.AppendValue(json, hasText ? Text : Number);
  }
}

void ExpectShowable(const Rows& parameters) {
  parameters.ExpectShowable(Name);
  parameters.ExpectShowable(Text);
}

bool IsText(const Rows& parameters) {
  const std::string_view text = parameters.Text(Text);
  return !parameters.IsNull(Text) &&
         (parameters.Text(Kind) != "double" || (text != "-0.0" && !text.starts_with("NaN:")));
}

std::string ValueInWords(const Rows& parameters) {
  if (IsText(parameters)) {
    return Readable(parameters.Text(Text));
  }
  if (!parameters.IsNull(Text)) {
    return parameters.Text(Text) == "-0.0" ? "-0.0" : "NaN";
  }
  std::string value;
  AppendParameterValue(value, parameters);
  return value == "1e999" ? "inf" : value == "-1e999" ? "-inf" : value;
}

}  // namespace Velora::Store
