#include "reading/Values.h"

#include "StoredText.h"
#include "output/Json.h"
#include "output/Terminal.h"

#include <charconv>
#include <cmath>

namespace Velora::Ts {

namespace {

enum Column { Position, Name, Kind, Text, Number };

}  // namespace

std::string Readable(std::string_view stored) {
  using namespace Quor::TolvaServices::Local;
  const std::string given = FromStoredText(stored);
  std::string readable;
  for (std::string_view rest = given; !rest.empty();) {
    const std::size_t length = rest.front() == '\0' ? 0 : SequenceLength(rest);
    readable += length > 0 ? rest.substr(0, length) : "\xEF\xBF\xBD";
    rest.remove_prefix(length > 0 ? length : 1);
  }
  return readable;
}

std::string Shown(std::string_view stored) { return Printable(Readable(stored)); }

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

std::optional<double> NumberIn(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::string ParameterInWords(const Rows& parameters) {
  return Shown(parameters.Text(Name)) + '=' + Printable(ValueInWords(parameters));
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

}  // namespace Velora::Ts
