#include "verbs/ComparisonOptions.h"

#include "asking/ComparisonArgument.h"
#include "store/values/RecordedText.h"

namespace Velora::Ts {

using namespace Store;

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
  ComparisonRules rules = ComparisonArgument(tolerances, ignored);
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
