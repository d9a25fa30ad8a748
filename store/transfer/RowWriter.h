#pragma once

#include "store/database/Database.h"

#include <memory>
#include <string_view>

namespace Velora::Store {

class Connection;
class Rows;
struct Table;

/// Inserts rows into a table that were read from the same table of another store, within a transaction.
class RowWriter {
 public:
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;
  virtual ~RowWriter() = default;

  /// Adds the current row, which must have all columns of the table in their order.
  /// @param bytes the same row in the form of RowBytes.h, with the shift of the writer.
  virtual void Add(const Rows& rows, std::string_view bytes) = 0;
  /// Inserts the added rows that are not inserted yet.
  virtual void Flush() = 0;
};

/// Makes a writer for a table of a store.
/// @param shift is added to each key (StoreNumbers.h).
std::unique_ptr<RowWriter> MakeRowWriter(Database::Kind kind, Connection& store, const Table& table, long long shift);

}  // namespace Velora::Store
