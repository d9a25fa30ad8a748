#include "asking/ComparisonArgument.h"

#include "asking/UsageError.h"
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
    throw UsageError("tolerance '" + argument + "': expected NAME=0.1, NAME=1%, 0.1 or 1%");
  }
  return isShare ? Tolerance{0, *number / 100} : Tolerance{*number, 0};
}

}  // namespace

ComparisonRules ComparisonArgument(const std::vector<std::string>& tolerances,
                                   const std::vector<std::string>& ignored) {
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
  return rules;
}

}  // namespace Velora::Ts
