#pragma once

#include "page/writer/Against.h"
#include "page/writer/RunPage.h"
#include "store/comparing/Comparison.h"

#include <map>
#include <optional>
#include <string>

namespace Velora::Page {

/// The page of a run that can be compared with another one.
class ComparedPage {
 public:
  /// Compares the runs, if there are two, and decides which events the page has. The sides and the log must outlive
  /// this object.
  /// @param second the run with which the first one is compared; nothing for none.
  /// @param units of parameters, by their names.
  /// @param log null for none.
  ComparedPage(const Store::Comparison::Side& first, const std::optional<Store::Comparison::Side>& second,
               const Store::ComparisonRules& rules, const std::map<std::string, std::string>& units,
               const LogColumns* log);

  ComparedPage(const ComparedPage&) = delete;
  ComparedPage& operator=(const ComparedPage&) = delete;

  const RunPage& Page() const { return page; }

 private:
  std::optional<Store::Comparison> comparison;
  std::optional<Against> against;
  RunPage page;
};

}  // namespace Velora::Page
