#pragma once

#include "copying/StoredTables.h"

#include <memory>

namespace Quor::TolvaServices::Local {
class Connection;
}

namespace Velora::Ts {

class Rows;

/// Inserts rows into a table as they were read from another store's. To be used in a transaction.
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

std::unique_ptr<RowWriter> MakeRowWriter(Quor::TolvaServices::Local::Connection& connection, bool onServer,
                                         const StoredTable& table);

}  // namespace Velora::Ts
