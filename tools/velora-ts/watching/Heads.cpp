#include "watching/Heads.h"

#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long mostNew = 200'000;  // events; of more, it is faster to count anew

std::string HighestIn(const std::string& table, const std::string& key, const KeyRange& keys) {
  return "(SELECT MAX(" + key + ") FROM " + table + " WHERE " + key + " > " + std::to_string(keys.after) + " AND " +
         key + " <= " + std::to_string(keys.upTo) + ")";
}

// A server has a partition for each month of its own events, and plans for those in which there can be rows.
std::string HighestEvent(long long store, long long known) {
  if (known >= firstMonthlyKey) {
    return HighestIn("events", "event_id", {known - known % numbersOfAStore - 1, KeysOf(store).back().upTo});
  }
  const std::vector<KeyRange> ranges = KeysOf(store);
  std::string highest = HighestIn("events", "event_id", ranges.back());
  return ranges.size() == 1 ? highest : "COALESCE(" + highest + ", " + HighestIn("events", "event_id", ranges[0]) + ")";
}

void Ask(const Store::Reader& store, Head& head, const Heads& before) {
  const auto known = std::find_if(before.stores.begin(), before.stores.end(),
                                  [&](const Head& other) { return other.store == head.store; });
  const KeyRange keys = KeysOf(head.store).front();
  const auto row = store.Sql().PrepareShort("SELECT " + HighestIn("sessions", "session_id", keys) + ", " +
                                            HighestIn("executions", "execution_id", keys) + ", " +
                                            HighestIn("statuses", "status_id", keys) + ", " +
                                            HighestEvent(head.store, known == before.stores.end() ? 0 : known->events));
  row->Next();
  int column = 0;
  for (long long* const highest : {&head.sessions, &head.executions, &head.statuses, &head.events}) {
    *highest = row->TypeOf(column) == Cursor::Type::Null ? 0 : row->Integer(column);
    ++column;
  }
}

bool Follows(const Head& later, const Head& before) {
  return later.store == before.store && later.guid == before.guid && later.sessions >= before.sessions &&
         later.executions >= before.executions && later.statuses >= before.statuses && later.events >= before.events &&
         later.events % numbersOfAStore - before.events % numbersOfAStore <= mostNew &&
         (before.events == 0 || (later.events >= firstMonthlyKey) == (before.events >= firstMonthlyKey));
}

}  // namespace

Heads HeadsOf(const Store::Reader& store, const Heads& before) {
  Heads heads;
  heads.version = store.SchemaVersion();
  heads.firstSession =
      store.Sql().Find<std::string>("SELECT guid FROM sessions ORDER BY session_id LIMIT 1").value_or("");
  for (const KnownStore& known : KnownStores(store)) {
    heads.stores.push_back({known.number, known.guid});
    Ask(store, heads.stores.back(), before);
  }
  return heads;
}

bool Follows(const Heads& later, const Heads& before) {
  return later.version == before.version && later.firstSession == before.firstSession &&
         std::equal(later.stores.begin(), later.stores.end(), before.stores.begin(), before.stores.end(),
                    [](const Head& one, const Head& other) { return Follows(one, other); });
}

}  // namespace Velora::Ts
