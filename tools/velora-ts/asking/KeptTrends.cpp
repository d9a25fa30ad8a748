#include "asking/KeptTrends.h"

#include "asking/TrendReading.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <thread>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long longestPortion = 100000;  // keys

/// Reads portions with two threads, if there are several.
void Read(const Reader& store, const std::vector<KeyRange>& portions, const std::string& parameter,
          TrendSummary& summary) {
  std::atomic<std::size_t> next = 0;
  const auto readSome = [&](const Reader& reader, TrendSummary& into) {
    KeysReader keys(reader, parameter, into);
    for (std::size_t portion = 0; (portion = next++) < portions.size();) {
      keys.Read(portions[portion]);
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

/// Notes the highest keys, and up to which keys no row is added any more. On a server, a transaction adds rows with
/// higher keys than those that could be seen before it began, unless it took a key just before it got its number.
/// Therefore some of the newest rows never count as settled. What another store forwards becomes visible in the order
/// of its keys.
/// @return whether all transactions have ended that ran at an earlier look.
bool KeptTrends::Look(const Reader& store, Kept& kept) {
  static constexpr const char* unsure = "1000";  // rows
  const bool isServer = store.Where().kind == Database::Kind::PostgreSql;
  long long oldest = 0, next = 0;  // transactions
  if (isServer) {
    Rows transactions(store, "SELECT txid_snapshot_xmin(s), txid_snapshot_xmax(s) FROM txid_current_snapshot() s");
    transactions.Next();
    oldest = transactions.Integer(0);
    next = transactions.Integer(1);
  }
  const std::string keys = "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id DESC ";
  Rows highest(store, keys + "LIMIT 1"), sure(store, keys + "LIMIT 1 OFFSET " + unsure);
  const bool isFirst = kept.running == 0, haveEnded = !isFirst && oldest >= kept.running;
  for (const KnownStore& known : KnownStores(store)) {
    for (const KeyRange& range : KeysOf(known.number)) {
      Progress& progress =
          kept.progress.try_emplace(range.after, Progress{range.after, range.after, range.after}).first->second;
      progress.end = highest.Ask(progress.read, range.upTo).Next() ? highest.Integer(0) : progress.read;
      if (!isServer || known.number != thisStore) {
        progress.settled = progress.end;
      } else if (haveEnded && sure.Ask(progress.settled, progress.highest).Next()) {
        progress.settled = sure.Integer(0);
      }
      if (isFirst || haveEnded) {
        progress.highest = progress.end;
      }
    }
  }
  kept.running = isFirst || haveEnded ? next : kept.running;
  return haveEnded;
}

/// Looks again until most of what there is has settled. The transactions of hosts take milliseconds.
void KeptTrends::Begin(Reader& store, Kept& kept) {
  static constexpr int mostLooks = 50;
  static constexpr std::chrono::milliseconds between{10};
  for (int looks = 0; !Look(store, kept) && looks < mostLooks; ++looks) {
    std::this_thread::sleep_for(between);
    store.Renew();
  }
}

/// Some portions of settled keys behind those that were read, which are noted as read.
std::vector<KeyRange> KeptTrends::NewKeys(const Reader& store, Kept& kept, std::size_t most) {
  Rows lowest(store, "SELECT event_id FROM events WHERE event_id > ?1 AND event_id <= ?2 ORDER BY event_id LIMIT 1");
  std::vector<KeyRange> portions;
  for (auto& [after, progress] : kept.progress) {
    while (portions.size() < most && progress.read < progress.settled &&
           lowest.Ask(progress.read, progress.settled).Next()) {
      const KeyRange portion{lowest.Integer(0) - 1, std::min(lowest.Integer(0) + longestPortion, progress.settled)};
      portions.push_back(portion);
      progress.read = portion.upTo;
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

KeptTrends::Kept& KeptTrends::LookAt(int number, Reader& store, const std::string& parameter) {
  store.Renew();
  Kept& found = Find(number, store, parameter);
  if (found.running == 0 && store.Where().kind == Database::Kind::PostgreSql) {
    Begin(store, found);
  } else {
    Look(store, found);
  }
  return found;
}

bool KeptTrends::ReadSome(int number, Reader& store, const std::string& parameter) {
  Kept& found = LookAt(number, store, parameter);
  try {
    const std::vector<KeyRange> portion = NewKeys(store, found, 1);
    Read(store, portion, parameter, found.summary);
    store.ExpectUntouched();
    return !portion.empty();
  } catch (...) {
    kept.pop_front();  // it has some of the portion
    throw;
  }
}

const TrendSummary& KeptTrends::Of(int number, Reader& store, const std::string& parameter) {
  Kept& found = LookAt(number, store, parameter);
  try {
    Read(store, NewKeys(store, found, std::numeric_limits<std::size_t>::max()), parameter, found.summary);
    found.withNewest.reset();
    for (const auto& [after, progress] : found.progress) {
      if (progress.read == progress.end) {
        continue;
      }
      if (!found.withNewest) {
        found.withNewest = SummaryFor(store, {});
        found.withNewest->Take(found.summary);
      }
      KeysReader(store, parameter, *found.withNewest).Read({progress.read, progress.end});
    }
    store.ExpectUntouched();
  } catch (...) {
    kept.pop_front();  // it has some of what is new
    throw;
  }
  return found.withNewest ? *found.withNewest : found.summary;
}

}  // namespace Velora::Ts
