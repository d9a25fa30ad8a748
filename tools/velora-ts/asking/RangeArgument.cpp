#include "asking/RangeArgument.h"

#include "asking/UsageError.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"

#include <optional>
#include <string_view>

namespace Velora::Ts {

using namespace Store;

ExpectedRange RangeArgument(const std::string& option, const std::string& text) {
  const auto fail = [&]() -> double {
    throw UsageError(option + " '" + text +
                     "': expected NAME=LOWEST..HIGHEST, such as 'Defocus=-6..-3', 'Dose=..40' or 'Dose=0..'");
  };
  constexpr std::string_view between = "..";
  const std::size_t sign = text.rfind('=');
  const std::size_t dots = text.find(between, sign == std::string::npos ? text.size() : sign);
  if (sign == 0 || dots == std::string::npos) {
    fail();
  }
  ExpectedRange range{ToStoredText(text.substr(0, sign)), text.substr(sign + 1)};
  const auto limit = [&](std::string_view words, double& value) {
    if (!words.empty()) {
      const std::optional<double> number = NumberIn(words);
      value = number ? *number : fail();
    }
    return !words.empty();
  };
  const bool hasLowest = limit(std::string_view(text).substr(sign + 1, dots - sign - 1), range.lowest);
  const bool hasHighest = limit(std::string_view(text).substr(dots + between.size()), range.highest);
  if ((!hasLowest && !hasHighest) || !(range.lowest <= range.highest)) {
    fail();
  }
  return range;
}

}  // namespace Velora::Ts
