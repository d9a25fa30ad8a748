#pragma once

#include "store/schema/Tables.h"

#include <map>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// How far the rows of a store have come: the highest number of each table except `parameters`, by the name of the
/// table; 0 for none.
using Marks = std::map<std::string, long long>;

/// The tables that have marks, in a version of the schema.
std::vector<Table> MarkedTables(int version);

/// A question for the marks of one of the stores in a store, in the order of MarkedTables().
/// @param store its number there (StoreNumbers.h). If it is that of the store itself, there must be no other.
std::string MarksQuestion(int version, long long store);

/// The marks of a store in a file of its own.
Marks MarksOf(const Reader& file);

/// What a store has behind some marks. Both counts are differences of numbers, which cost the same for any number of
/// rows, and are too high where numbers were left out.
struct Waiting {
  long long rows = 0;    ///< Of all tables except `parameters`.
  long long events = 0;  ///< Of these, the events.
  std::string since;     ///< The earliest time in the first such row of each table; empty if none has a time.
};

/// What a store in a file, opened for reading, has behind some marks. A table that has no mark counts from its
/// beginning.
Waiting WaitingBehind(const Reader& file, const Marks& marks);

}  // namespace Velora::Store
