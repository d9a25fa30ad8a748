#pragma once

#include "store/forwarding/Marks.h"

#include <string>
#include <utility>
#include <vector>

namespace Velora::Store {

class Connection;
class Reader;

/// Plans which rows one transaction takes, so that what a reader sees after each of them is a state that the store had,
/// or nearly so: every row comes with or after those to which it refers, no final status of an execution before the
/// events of that execution, and no seal before the rows that it covers.
/// @param from how far the rows have come.
/// @param size about how many rows of a table to take, from 1 on. If no table has more, the portion is all that is new.
/// @return how far they have come then; `from` only if nothing is new.
Marks PlanPortion(const Reader& file, const Marks& from, long long size);

/// The rows of a portion, in the binary format of COPY.
struct Portion {
  struct TableRows {
    Table table;
    std::string bytes;
    long long rows = 0;
  };

  Marks upTo;
  std::vector<TableRows> tables;  ///< Those that have rows, each after the tables to which it refers.
  std::size_t bytes = 0;
  long long rows = 0;  ///< Of all tables except `parameters`.
  long long events = 0;
};

/// Reads a portion of at most about a size, and of so few rows that they have room in the memory.
/// @param shift is added to each key (StoreNumbers.h).
Portion ReadPortion(const Reader& file, const Marks& from, long long size, long long shift);

}  // namespace Velora::Store
