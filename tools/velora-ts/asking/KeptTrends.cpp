#include "asking/KeptTrends.h"

#include "asking/TrendReading.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long longestPortion = 200000;  // keys

/// Reads portions with two threads, if there are several.
void Read(const Reader& store, const std::vector<KeyRange>& portions, const std::string& parameter,
          TrendSummary& summary) {
  std::atomic<std::size_t> next = 0;
  const auto readSome = [&](const Reader& reader, TrendSummary& into) {
    for (std::size_t portion = 0; (portion = next++) < portions.size();) {
      ReadKeys(reader, portions[portion], parameter, into);
    }
  };
  if (portions.size() < 2) {
    return readSome(store, summary);
  }
  TrendSummary others = SummaryFor(store, {});
  auto helping = std::async(std::launch::async, [&] {
    const Reader reader(store.Where());
    readSome(reader, others);
    reader.ExpectUntouched();
  });
  readSome(store, summary);
  helping.get();
  summary.Take(others);
}

}  // namespace

/// Up to which key of a range nothing can become visible any more. A host commits within seconds, and what another
/// store forwards becomes visible in the order of its keys.
long long KeptTrends::SettledOf(const Reader& store, const KeyRange& range, long long end, Progress& progress) {
  static constexpr std::chrono::minutes longestWait{1};
  static constexpr const char* newest = "20000";  // when it is not known since when they can be seen
  if (store.Where().kind == Database::Kind::Sqlite || StoreOf(range.after + 1) != thisStore) {
    return end;
  }
  long long settled = progress.read;
  if (const auto now = std::chrono::steady_clock::now(); now - progress.seen > longestWait) {
    settled = std::max(settled, progress.highest);
    progress.highest = end;
    progress.seen = now;
  }
  Rows before(store, std::string("SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id "
                                 "DESC LIMIT 1 OFFSET ") +
                         newest);
  return before.Ask(settled, end).Next() ? before.Integer(0) : settled;
}

/// The portions of keys behind those that were read, which are noted as read.
/// @param newest gets those that will be read again.
std::vector<KeyRange> KeptTrends::NewKeys(const Reader& store, Kept& kept, std::vector<KeyRange>& newest) {
  Rows highest(store,
               "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id DESC LIMIT 1");
  Rows lowest(store, "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id LIMIT 1");
  std::vector<KeyRange> portions;
  for (const KnownStore& known : KnownStores(store)) {
    for (const KeyRange& range : KeysOf(known.number)) {
      Progress& progress = kept.progress.try_emplace(range.after, Progress{range.after, range.after}).first->second;
      const long long end = highest.Ask(progress.read, range.upTo).Next() ? highest.Integer(0) : progress.read;
      const long long settled = SettledOf(store, range, end, progress);
      while (progress.read < settled && lowest.Ask(progress.read, settled).Next()) {
        const KeyRange portion{lowest.Integer(0) - 1, std::min(lowest.Integer(0) + longestPortion, settled)};
        portions.push_back(portion);
        progress.read = portion.upTo;
      }
      if (progress.read < end) {
        newest.push_back({progress.read, end});
      }
    }
  }
  return portions;
}

KeptTrends::Kept& KeptTrends::Find(int number, const Reader& store, const std::string& parameter) {
  const std::string guid = KnownStores(store).front().guid;
  for (auto one = kept.begin(); one != kept.end(); ++one) {
    if (one->number == number && one->parameter == parameter && one->guid == guid) {
      kept.splice(kept.begin(), kept, one);
      return kept.front();
    }
  }
  if (kept.size() == mostKept) {
    kept.pop_back();
  }
  return kept.emplace_front(Kept{number, parameter, guid, SummaryFor(store, {})});
}

const TrendSummary& KeptTrends::Of(int number, const Reader& store, const std::string& parameter) {
  Kept& found = Find(number, store, parameter);
  try {
    std::vector<KeyRange> newest;
    Read(store, NewKeys(store, found, newest), parameter, found.summary);
    found.withNewest.reset();
    if (!newest.empty()) {
      found.withNewest = SummaryFor(store, {});
      found.withNewest->Take(found.summary);
      Read(store, newest, parameter, *found.withNewest);
    }
    store.ExpectUntouched();
  } catch (...) {
    kept.pop_front();  // it has some of what is new
    throw;
  }
  return found.withNewest ? *found.withNewest : found.summary;
}

}  // namespace Velora::Ts
