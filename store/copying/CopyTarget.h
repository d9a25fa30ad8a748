#pragma once

#include "store/copying/RowWriter.h"
#include "store/schema/Tables.h"

#include <functional>
#include <memory>

namespace Velora::Store {

class Writer;
struct Database;

/// The store into which another one is copied. The subclasses do what differs between the databases.
class CopyTarget {
 public:
  CopyTarget() = default;
  CopyTarget(const CopyTarget&) = delete;
  CopyTarget& operator=(const CopyTarget&) = delete;
  virtual ~CopyTarget() = default;

  /// A writer for the rows of a table.
  virtual std::unique_ptr<RowWriter> RowsOf(const Table& table) = 0;
  /// Calls a function that deletes rows of ts_schema, which the database otherwise refuses. Within a transaction.
  virtual void WithoutGuardOfHistory(const std::function<void()>& work) = 0;
  /// Makes what the row of an event needs: on a server, a partition.
  virtual void MakeRoomFor(long long event) = 0;
  /// Makes new rows get higher numbers than the copied ones.
  virtual void Finish() = 0;
};

/// Makes the target for the kind of a database.
std::unique_ptr<CopyTarget> MakeCopyTarget(Writer& store, const Database& database);

}  // namespace Velora::Store
