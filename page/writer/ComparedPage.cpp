#include "page/writer/ComparedPage.h"

namespace Velora::Page {

using Side = Store::Comparison::Side;

ComparedPage::ComparedPage(const Side& first, const std::optional<Side>& second, const Store::ComparisonRules& rules,
                           const std::map<std::string, std::string>& units, const LogColumns* log)
    : comparison(second ? std::optional<Store::Comparison>(std::in_place, first, *second, rules) : std::nullopt),
      against(comparison ? std::optional<Against>(std::in_place, *comparison) : std::nullopt),
      page(first.store, first.run, {units, log, against ? &*against : nullptr}) {}

}  // namespace Velora::Page
