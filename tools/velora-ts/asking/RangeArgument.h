#pragma once

#include <limits>
#include <string>

namespace Velora::Ts {

/// The values of a parameter that are as they should be.
struct ExpectedRange {
  std::string parameter;  ///< Its name, in stored form.
  std::string words;      ///< "-6..-3", as it was given.
  double lowest = -std::numeric_limits<double>::infinity();
  double highest = std::numeric_limits<double>::infinity();

  /// Whether a number is between both, or one of them. What is not a number is in no range.
  bool Contains(double number) const { return number >= lowest && number <= highest; }
};

/// A range from the command line: NAME=LOWEST..HIGHEST, of which one limit can be left out. The last "=" ends the name.
/// @param option its name, for the error.
/// @throws UsageError for another text, and for a range without a number in it.
ExpectedRange RangeArgument(const std::string& option, const std::string& text);

}  // namespace Velora::Ts
