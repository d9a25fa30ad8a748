#include "asking/TrendSources.h"

#include "store/reading/Reader.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

InstrumentFinder::InstrumentFinder(const Reader& store)
    : first(store,
            "SELECT MIN(o.session_id) FROM sessions n CROSS JOIN sessions o WHERE n.session_id = ?1 AND "
            "o.instrument = n.instrument") {}

long long InstrumentFinder::Of(long long session) {
  const auto [place, isNew] = known.try_emplace(session);
  if (isNew && first.Ask(session).Next() && !first.IsNull(0)) {
    place->second = first.Integer(0);
  }
  return place->second;
}

VersionFinder::VersionFinder(const Reader& store)
    : one(store, "SELECT parent_id, version_id FROM executions WHERE execution_id = ?1") {}

const std::vector<long long>& VersionFinder::Of(long long execution) {
  Execution& place = known[static_cast<std::size_t>(execution) % known.size()];
  if (place.key != execution) {
    place = {execution, Ask(execution)};
  }
  return place.versions;
}

// A parent has a lower key. What says otherwise is not followed, as in Store::WindowQuestion.
std::vector<long long> VersionFinder::Ask(long long execution) {
  std::vector<long long> versions;
  for (long long key = execution; key > 0 && one.Ask(key).Next();) {
    const long long parent = one.IsNull(0) ? 0 : one.Integer(0);
    const long long version = one.IsNull(1) ? 0 : one.Integer(1);
    if (versions.empty() || std::find(versions.begin(), versions.end(), version) == versions.end()) {
      versions.push_back(version);
    }
    key = parent < key ? parent : 0;
  }
  versions.resize(std::max(versions.size(), std::size_t{1}));
  std::sort(versions.begin() + 1, versions.end());
  return versions;
}

}  // namespace Velora::Ts
