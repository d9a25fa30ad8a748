#include "reading/Values.h"

#include "output/Json.h"
#include "output/Terminal.h"

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
  } else if (hasNumber && (number == 0 || number == 1) && parameters.Text(Kind) == "bool") {
    json += number == 0 ? "false" : "true";
  } else {
    parameters.AppendValue(json, hasText ? Text : Number);
  }
}

bool IsText(const Rows& parameters) {
  const std::string_view text = parameters.Text(Text);
  return !parameters.IsNull(Text) &&
         (parameters.Text(Kind) != "double" || (text != "-0.0" && !text.starts_with("NaN:")));
}

std::string ValueInWords(const Rows& parameters) {
  if (!parameters.IsNull(Text)) {
    const std::string text(parameters.Text(Text));
    return !IsText(parameters) && text != "-0.0" ? "NaN" : text;
  }
  std::string value;
  AppendParameterValue(value, parameters);
  return value == "1e999" ? "inf" : value == "-1e999" ? "-inf" : value;
}

std::string ParameterInWords(const Rows& parameters) {
  return Printable(parameters.Text(Name)) + '=' + Printable(ValueInWords(parameters));
}

std::string UniqueName(std::set<std::string>& taken, const std::string& name, int occurrence) {
  const auto numbered = [&] { return name + " (" + std::to_string(occurrence) + ')'; };
  std::string unique = occurrence == 1 ? name : numbered();
  while (!taken.insert(unique).second) {
    ++occurrence;
    unique = numbered();
  }
  return unique;
}
