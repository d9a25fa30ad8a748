#include "output/Words.h"

#include "output/Output.h"
#include "output/Terminal.h"
#include "output/Times.h"
#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr double allWhole = 1e15;  // below it, no digit before the point is left out

}  // namespace

std::string Shown(std::string_view stored) { return Printable(Readable(stored)); }

std::string InWords(const Run& run) {
  std::string words = "run " + run.guid + ' ';
  AppendText(words, Readable(run.node));  // a JSON text stays on one line
  return Printable(words) + " of " + LocalTime(run.startedAt, false);
}

std::optional<Run> TheRunNamed(const Reader& store, const std::string& name) {
  const std::vector<Run> runs = RunsNamed(store, name);
  if (runs.size() == 1) {
    return runs.front();
  }
  Complain(runs.empty() ? "no run matches '" + name + "'; expected a guid, its first characters, \"last\" or a node"
                        : "several runs match '" + name + "'; name one of them by its guid:");
  for (const Run& run : runs) {
    Complain(InWords(run));
  }
  return std::nullopt;
}

std::string StateInWords(const Execution& execution) {
  if (!execution.status) {
    return "no status";
  }
  return IsRunning(execution)           ? unfinishedInWords
         : execution.status == Finished ? "done"
                                        : "status " + std::to_string(*execution.status);
}

std::string ActivityInWords(const Execution& execution) {
  return Shown(execution.activity) + (execution.version.empty() ? "" : ' ' + Shown(execution.version));
}

std::string DurationInWords(const Execution& execution, bool fractions) {
  const std::optional<double> seconds = SecondsOf(execution);
  return seconds ? Duration(*seconds, fractions) : "";
}

std::string JsonMembers(const Execution& execution) {
  std::string json;
  const auto add = [&](const char* name, const std::string& text) {
    json += json.empty() ? "\"" : ",\"";
    json += name;
    json += "\":";
    AppendText(json, text);
  };
  add("guid", execution.guid);
  add("node", execution.node);
  add("description", execution.description);
  add("instrument", execution.instrument);
  add("host", execution.host);
  add("activity", execution.activity);
  add("version", execution.version);
  add("started_at", execution.startedAt);
  add("status_at", execution.statusAt);
  json += ",\"status\":" + (execution.status ? std::to_string(*execution.status) : "null") + ",\"seconds\":";
  if (const std::optional<double> seconds = SecondsOf(execution)) {
    AppendNumber(json, *seconds);
  } else {
    json += "null";
  }
  return json;
}

std::string NumberInWords(double number, int digits) {
  const double size = std::abs(number);
  std::array<char, 32> text{};
  const auto end = digits == allDigits ? std::to_chars(text.begin(), text.end(), number)
                   : size >= std::pow(10, digits) && size < allWhole
                       ? std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed, 0)
                       : std::to_chars(text.begin(), text.end(), number, std::chars_format::general, digits);
  return std::string(text.data(), end.ptr);
}

std::string ValueOf(const Rows& parameters, int digits) {
  const bool rounded =
      digits != allDigits && parameters.IsNull(3) && parameters.IsNumber(4) && parameters.Text(2) == "double";
  return rounded ? NumberInWords(parameters.Number(4), digits) : Printable(ValueInWords(parameters));
}

std::string ParameterInWords(const Rows& parameters, int digits) {
  return Shown(parameters.Text(1)) + '=' + ValueOf(parameters, digits);
}

bool IsNumber(const Rows& parameters) { return !IsText(parameters) && parameters.Text(2) != "bool"; }

}  // namespace Velora::Ts
