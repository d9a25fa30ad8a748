#pragma once

#include "store/schema/StoreNumbers.h"

#include <limits>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

// The stores whose rows a store has: its own, and those that it took in (docs/forwarding.md).

struct KnownStore {
  long long number = thisStore;
  std::string guid = "";  ///< Empty if the store has an earlier version, which has no table of stores.
};

/// What a query names after FROM to ask for stores; an alias must follow. A store of an earlier version has one of the
/// number 1.
std::string StoresIn(const Reader& store);

/// All stores, this one first, in the order of their numbers.
std::vector<KnownStore> KnownStores(const Reader& store);

/// The names of the instruments of a store, as stored, separated by commas; empty if it has no sessions.
std::string InstrumentsOf(const Reader& store, long long number);

/// Names a store for a person: "the store of Scope 7".
std::string StoreInWords(const Reader& store, long long number);

/// Keys above one and up to another.
struct KeyRange {
  long long after = 0;
  long long upTo = 0;
};

/// The keys of a store whose numbers there are above one number and up to another, in their order. Those of the store
/// itself can have a gap, in which the keys of others are.
std::vector<KeyRange> KeysOf(long long store, long long after = std::numeric_limits<long long>::min(),
                             long long upTo = std::numeric_limits<long long>::max());

/// One range with all keys of the store that a row with this key is from. A question about a run of another store that
/// is limited to them keeps a server from planning for every month of its own events.
KeyRange KeysBeside(long long key);

}  // namespace Velora::Store
