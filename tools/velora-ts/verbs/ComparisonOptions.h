#pragma once

#include "store/comparing/Comparison.h"
#include "verbs/Verb.h"

#include <string>
#include <vector>

namespace Velora::Ts {

/// The options that say what counts as a difference.
class ComparisonOptions {
 public:
  explicit ComparisonOptions(Options& options);
  /// Declares --slower too.
  void AddSlower(Options& options);

  /// @throws UsageError when a tolerance or a factor is not understood.
  Store::ComparisonRules Rules() const;
  /// Whether --slower was given, so that durations alone make runs different.
  bool DurationsCount() const { return !slower.empty(); }

 private:
  std::vector<std::string> tolerances, ignored;
  std::string slower;
};

}  // namespace Velora::Ts
