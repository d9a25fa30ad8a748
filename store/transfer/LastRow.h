#pragma once

#include <string>

namespace Velora::Store {

class Connection;
struct Table;

// The last row that a store has from another one says whether the rows of that one can follow.

/// The row with a key and, of an event, its parameters, in the form of RowBytes.h. Empty if there is none.
/// @param shift is added to each key (StoreNumbers.h).
std::string RowWith(Connection& store, const Table& table, long long key, long long shift);

/// Says that a store lacks the row that another one has from it, or has another row in its place.
/// @param number of the row in the store.
/// @param row that the store has; empty if it has none.
std::string WhyNoneCanFollow(const std::string& store, const std::string& row, const Table& table, long long number,
                             const std::string& other);

}  // namespace Velora::Store
