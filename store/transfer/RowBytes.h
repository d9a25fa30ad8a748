#pragma once

#include <string>

namespace Velora::Store {

class Rows;
struct Table;

/// Appends the current row, which must have all columns of the table in their order, in the binary format of
/// PostgreSQL's COPY. Equal rows have equal bytes, and different rows have different bytes, in both databases.
/// @param shift is added to each key (StoreNumbers.h).
void AppendRow(std::string& bytes, const Rows& rows, const Table& table, long long shift);

/// The beginning and the end of all rows in that format.
extern const std::string beginOfRows;
extern const std::string endOfRows;

}  // namespace Velora::Store
