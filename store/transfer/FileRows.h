#pragma once

#include "store/database/Cursor.h"
#include "store/schema/Table.h"
#include "store/transfer/RowWriter.h"

namespace Velora::Store {

/// Inserts each row into a file with a prepared statement.
class FileRows : public RowWriter {
 public:
  FileRows(Connection& file, const Table& table, long long shift);

  void Add(const Rows& rows, std::string_view bytes) override;
  void Flush() override {}

 private:
  const std::vector<Column> columns;
  const long long shift;
  std::unique_ptr<Cursor> insert;
};

}  // namespace Velora::Store
