#include "store/record/SealedContents.h"

#include "store/reading/Reader.h"

#include <algorithm>
#include <utility>

namespace Velora::Store {

SealedContents::SealedContents(const Reader& store, long long origin, long long after,
                               std::function<void(std::string_view)> sink)
    : store(store),
      ofOrigin(KeysOf(origin).front()),
      shift(ShiftOf(origin)),
      seals(store, origin, after),
      records(store, origin, none, std::move(sink)),
      ofRunBefore(
          store,
          "SELECT up_to FROM seals WHERE run = ?1 AND seal_id > ?2 AND seal_id < ?3 ORDER BY seal_id DESC LIMIT 1") {
  Rows rest(
      store,
      "SELECT up_to FROM seals WHERE run IS NULL AND seal_id > ?1 AND seal_id <= ?2 ORDER BY seal_id DESC LIMIT 1");
  if (rest.Ask(ofOrigin.after, after + shift).Next()) {
    ofNoRun = FromText(rest.Text(0)).value_or(none);
  }
}

bool SealedContents::Next() {
  run.reset();
  if (!seals.Next()) {
    return false;
  }
  const Seal& seal = Current();
  const PerKind upTo = FromText(seal.upTo).value_or(none);
  records.Limit(upTo);
  if (seal.run.empty()) {
    records.WriteRest(std::exchange(ofNoRun, upTo));
    return true;
  }
  const std::vector<Run> named = RunsNamed(store, seal.run);
  const auto found = std::find_if(named.begin(), named.end(), [&](const Run& one) { return one.guid == seal.run; });
  if (found != named.end()) {
    run = *found;
    const bool again = ofRunBefore.Ask(seal.run, ofOrigin.after, seal.number + shift).Next();
    records.WriteRun(run->root, again ? FromText(ofRunBefore.Text(0)).value_or(none) : none);
  }
  return true;
}

}  // namespace Velora::Store
