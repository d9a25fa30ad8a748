#include "verbs/DigitsOption.h"

#include "output/Words.h"

#include <charconv>

namespace Velora::Ts {

DigitsOption::DigitsOption(Options& options) {
  options.AddText("--digits", text, "Significant digits of numbers, 1 to 17 or all. JSON has all. Default: 6", "N");
}

int DigitsOption::Value() const {
  if (text == "all") {
    return allDigits;
  }
  int digits = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), digits);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size() || digits < 1 || digits > 17) {
    throw UsageError("--digits: expected a whole number from 1 to 17, or all, not '" + text + '\'');
  }
  return digits;
}

}  // namespace Velora::Ts
