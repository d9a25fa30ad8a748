#pragma once

#include "store/copying/RowWriter.h"
#include "store/copying/StoredTables.h"

#include <functional>
#include <memory>

namespace Velora::Store {

class Writer;
struct Database;

/// A store that another one is copied into, and what the databases do each in its own way.
class CopyTarget {
 public:
  CopyTarget() = default;
  CopyTarget(const CopyTarget&) = delete;
  CopyTarget& operator=(const CopyTarget&) = delete;
  virtual ~CopyTarget() = default;

  virtual std::unique_ptr<RowWriter> RowsOf(const StoredTable& table) = 0;
  /// Does something that deletes rows of ts_schema, within a transaction.
  virtual void WithoutGuardOfHistory(const std::function<void()>& work) = 0;
  /// Makes what the row of an event needs beside its table.
  virtual void MakeRoomFor(long long event) = 0;
  /// Lets new rows follow those that were copied.
  virtual void Finish() = 0;
};

std::unique_ptr<CopyTarget> MakeCopyTarget(Writer& store, const Database& database);

}  // namespace Velora::Store
