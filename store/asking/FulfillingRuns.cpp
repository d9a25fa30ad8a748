#include "store/asking/FulfillingRuns.h"

#include "store/asking/SelectedEvents.h"

namespace Velora::Store {

FulfillingRuns::FulfillingRuns(const Reader& store, std::vector<Condition> given)
    : store(store), conditions(std::move(given)) {
  for (const Condition& condition : conditions) {
    notMet.insert(condition.name);
  }
}

bool FulfillingRuns::Has(long long root) {
  if (conditions.empty()) {
    return true;
  }
  const WindowQuestion run(store, {.run = root});
  FulfillingEvents events(run, conditions);
  const bool has = events.Ask().Next();
  std::erase_if(notMet, [&](const std::string& name) { return !events.NotMet().contains(name); });
  return has;
}

}  // namespace Velora::Store
