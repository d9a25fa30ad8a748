#pragma once

#include <map>
#include <string>

namespace Velora::Store {

class Connection;
class Reader;

/// How far the rows of a store have come: the highest number of each table except `parameters`, by the name of the
/// table; 0 for none.
using Marks = std::map<std::string, long long>;

/// Asks a store for the marks of one of the stores in it.
/// @param store its number there (StoreNumbers.h).
Marks MarksOf(Connection& sql, long long store);

/// What a store has behind some marks. Both counts are differences of numbers, which cost the same for any number of
/// rows, and are too high where numbers were left out.
struct Waiting {
  long long rows = 0;    ///< Of all tables except `parameters`.
  long long events = 0;  ///< Of these, the events.
  std::string since;     ///< The earliest time in the first such row of each table; empty if none has a time.
};

/// What a store in a file, opened for reading, has behind some marks.
Waiting WaitingBehind(const Reader& file, const Marks& marks);

}  // namespace Velora::Store
