#pragma once

#include <string>

namespace Velora::Store {

// A store can also have the rows of other stores. Then the key of a row says from which store it is, and which number
// it has there: docs/forwarding.md.

/// How many numbers the rows of a table of one store can have, less one.
inline constexpr long long numbersOfAStore = 10'000'000'000;
/// From here on, the keys of events begin with a month, which only a server's own events have.
inline constexpr long long firstMonthlyKey = 2'000'010'000'000'000;
/// The number of a store in its own table `stores`. Other stores there have higher numbers.
inline constexpr long long thisStore = 1;

/// The number of the store that a row with this key is from.
constexpr long long StoreOf(long long key) {
  return key < numbersOfAStore || key >= firstMonthlyKey ? thisStore : key / numbersOfAStore;
}

/// What is added to the numbers that the rows of a store have there, to get their keys here.
constexpr long long ShiftOf(long long store) { return store == thisStore ? 0 : store * numbersOfAStore; }

/// The number that a row with this key has in the store that it is from.
constexpr long long NumberOf(long long key) { return key - ShiftOf(StoreOf(key)); }

/// An SQL expression that is the same for all rows of a store, and different for those of others, except for a server's
/// own events.
/// @param key an expression for the key of a row.
std::string StoreOf(const std::string& key);

/// An SQL condition for the rows of this store in other tables than that of events.
std::string IsOwn(const std::string& key);

/// An SQL condition for the rows of a store.
/// @param key an expression for the key of a row.
std::string IsOfStore(const std::string& key, long long store);

}  // namespace Velora::Store
