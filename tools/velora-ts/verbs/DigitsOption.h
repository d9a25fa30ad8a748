#pragma once

#include "verbs/Verb.h"

#include <string>

namespace Velora::Ts {

/// The option --digits: how many significant digits numbers are shown with.
class DigitsOption {
 public:
  explicit DigitsOption(Options& options);

  /// The number, or `allDigits`. @throws UsageError when it is neither from 1 to 17 nor "all".
  int Value() const;

 private:
  std::string text = "6";
};

}  // namespace Velora::Ts
