#include "serving/ReportedRun.h"

#include <utility>

namespace Velora::Ts {

using namespace Store;

ReportedRun::ReportedRun(NamedPair given)
    : pair(std::move(given)),
      page(pair.first.Side(), pair.second ? std::optional(pair.second->Side()) : std::nullopt, pair.rules,
           pair.first.place->settings.units, nullptr) {}

void ReportedRun::Write(const std::function<void(const Page::RunPage&)>& write) const {
  write(page.Page());
  pair.first.store->ExpectUntouched();
  if (pair.second) {
    pair.second->store->ExpectUntouched();
  }
}

}  // namespace Velora::Ts
