#include "store/reading/KnownStores.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/Tables.h"
#include "store/values/RecordedText.h"

#include <algorithm>

namespace Velora::Store {

std::string StoresIn(const Reader& store) {
  const Table& table = TableNamed("stores");
  return store.SchemaVersion() >= table.since ? table.name : "(SELECT 1 AS store_id, '' AS guid)";
}

std::vector<KnownStore> KnownStores(const Reader& store) {
  std::vector<KnownStore> stores{{}};
  for (Rows rows(store, "SELECT store_id, guid FROM " + StoresIn(store) + " stores ORDER BY store_id"); rows.Next();) {
    const KnownStore known{StoreOf(rows.Integer(0)), std::string(rows.Whole(1))};
    if (known.number != stores.back().number) {
      stores.push_back(known);
    } else if (stores.back().guid.empty()) {
      stores.back() = known;
    }
  }
  return stores;
}

std::string InstrumentsOf(const Reader& store, long long number) {
  std::string names;
  for (Rows rows(store, "SELECT DISTINCT instrument FROM sessions WHERE " + IsOfStore("session_id", number) +
                            " ORDER BY instrument");
       rows.Next();) {
    names += (names.empty() ? "" : ", ") + std::string(rows.Text(0));
  }
  return names;
}

std::string StoreInWords(const Reader& store, long long number) {
  const std::string instruments = InstrumentsOf(store, number);
  return number == thisStore   ? "this store"
         : instruments.empty() ? "store " + std::to_string(number)
                               : "the store of " + Readable(instruments);
}

std::vector<KeyRange> KeysOf(long long store, long long after, long long upTo) {
  if (store != thisStore) {
    const long long last = numbersOfAStore - 1;
    return {{ShiftOf(store) + std::clamp(after, 0LL, last), ShiftOf(store) + std::clamp(upTo, 0LL, last)}};
  }
  std::vector<KeyRange> ranges;
  if (after < numbersOfAStore - 1) {
    ranges.push_back({after, std::min(upTo, numbersOfAStore - 1)});
  }
  if (upTo >= firstMonthlyKey) {
    ranges.push_back({std::max(after, firstMonthlyKey - 1), upTo});
  }
  return ranges;
}

KeyRange KeysBeside(long long key) {
  const std::vector<KeyRange> keys = KeysOf(StoreOf(key));
  return {keys.front().after, keys.back().upTo};
}

}  // namespace Velora::Store
