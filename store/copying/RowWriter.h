#pragma once

#include <string_view>

namespace Velora::Store {

class Rows;

/// Inserts rows into a table that were read from the same table of another store, within a transaction.
class RowWriter {
 public:
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;
  virtual ~RowWriter() = default;

  /// Adds the current row, which must have all columns of the table in their order.
  /// @param bytes the same row in the form of RowBytes.h.
  virtual void Add(const Rows& rows, std::string_view bytes) = 0;
  /// Inserts the added rows that are not inserted yet.
  virtual void Flush() = 0;
};

}  // namespace Velora::Store
