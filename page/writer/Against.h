#pragma once

#include "page/writer/KeptEvents.h"
#include "store/comparing/Comparison.h"

#include <functional>
#include <string_view>

namespace Velora::Page {

/// The run with which a page compares its own, and what belongs together in both.
class Against {
 public:
  /// Decides which events of the second run the page has. The comparison, whose first run is that of the page, must
  /// outlive this object.
  explicit Against(const Store::Comparison& comparison);

  const Store::Reader& Store() const { return comparison.SecondSide().store; }
  const Store::Run& Run() const { return comparison.SecondSide().run; }
  const KeptEvents& Kept() const { return kept; }

  /// Writes the members of page/FORM.md about both runs, each after a comma. Compares the runs meanwhile.
  void WriteComparison(const std::function<void(std::string_view piece)>& write) const;

 private:
  const Store::Comparison& comparison;
  const KeptEvents kept;
};

}  // namespace Velora::Page
