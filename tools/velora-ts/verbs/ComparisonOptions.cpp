#include "verbs/ComparisonOptions.h"

#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"

namespace Velora::Ts {

using namespace Store;

namespace {

// "0.1" is an amount, "1%" a share of the value.
Tolerance ToleranceOf(const std::string& text, const std::string& argument) {
  const bool isShare = text.ends_with('%');
  const std::optional<double> number = NumberIn(text.substr(0, text.size() - (isShare ? 1 : 0)));
  if (!number || *number < 0) {
    throw UsageError("--tolerance '" + argument + "': expected NAME=0.1, NAME=1%, 0.1 or 1%");
  }
  return isShare ? Tolerance{0, *number / 100} : Tolerance{*number, 0};
}

}  // namespace

ComparisonOptions::ComparisonOptions(Options& options) {
  options.AddList("--tolerance", tolerances,
                  "By how much numbers may differ: PARAMETER=0.1 or PARAMETER=1% for one, 0.1 or 1% for all others",
                  "[PARAMETER=]X");
  options.AddList("--ignore", ignored, "Parameters and events to leave out, by their names", "PARAMETER");
}

void ComparisonOptions::AddSlower(Options& options) {
  options.AddText("--slower", slower,
                  "A factor: durations that differ by more make the runs different. Without it, durations that differ "
                  "by more than 1.5 times and one second are told",
                  "FACTOR");
}

ComparisonRules ComparisonOptions::Rules() const {
  ComparisonRules rules;
  for (const std::string& tolerance : tolerances) {
    const std::size_t end = tolerance.rfind('=');
    if (end == std::string::npos) {
      rules.otherwise = ToleranceOf(tolerance, tolerance);
    } else {
      rules.tolerances[ToStoredText(tolerance.substr(0, end))] = ToleranceOf(tolerance.substr(end + 1), tolerance);
    }
  }
  for (const std::string& name : ignored) {
    rules.ignored.insert(ToStoredText(name));
  }
  if (DurationsCount()) {
    const std::optional<double> factor = NumberIn(slower);
    if (!factor || *factor < 1) {
      throw UsageError("--slower '" + slower + "': expected a number of at least 1, for example 1.5");
    }
    rules.slower = *factor;
    rules.shortestDifference = 0;
  }
  return rules;
}

}  // namespace Velora::Ts
