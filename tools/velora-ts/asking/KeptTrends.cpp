#include "asking/KeptTrends.h"

#include "asking/TrendReading.h"

#include <atomic>
#include <future>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long longestPortion = 200000;  // keys

/// The portions of keys behind those that were read, which are noted as read.
std::vector<KeyRange> NewKeys(const Reader& store, std::map<long long, long long>& read) {
  Rows highest(store,
               "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id DESC LIMIT 1");
  Rows lowest(store, "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id LIMIT 1");
  std::vector<KeyRange> portions;
  for (const KnownStore& known : KnownStores(store)) {
    for (const KeyRange& range : KeysOf(known.number)) {
      long long& last = read.try_emplace(range.after, range.after).first->second;
      const long long end = highest.Ask(last, range.upTo).Next() ? highest.Integer(0) : last;
      while (last < end && lowest.Ask(last, end).Next()) {
        const KeyRange portion{lowest.Integer(0) - 1, std::min(lowest.Integer(0) + longestPortion, end)};
        portions.push_back(portion);
        last = portion.upTo;
      }
    }
  }
  return portions;
}

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
    Read(store, NewKeys(store, found.read), parameter, found.summary);
    store.ExpectUntouched();
  } catch (...) {
    kept.pop_front();  // it has some of what is new
    throw;
  }
  return found.summary;
}

}  // namespace Velora::Ts
