#pragma once

namespace Velora::Store {

class Rows;

/// Inserts rows into a table as they were read from another store's, within a transaction.
class RowWriter {
 public:
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;
  virtual ~RowWriter() = default;

  /// Adds the row where `rows` stands, which has the table's columns in their order.
  virtual void Add(const Rows& rows) = 0;
  /// Puts what was added into the table, where that did not happen yet.
  virtual void Flush() = 0;
};

}  // namespace Velora::Store
