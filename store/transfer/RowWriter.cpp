#include "store/transfer/RowWriter.h"

#include "store/database/PostgreSqlConnection.h"
#include "store/transfer/FileRows.h"
#include "store/transfer/ServerRows.h"

namespace Velora::Store {

std::unique_ptr<RowWriter> MakeRowWriter(Database::Kind kind, Connection& store, const Table& table, long long shift) {
  if (kind == Database::Kind::PostgreSql) {
    return std::make_unique<ServerRows>(static_cast<PostgreSqlConnection&>(store), table, shift);
  }
  return std::make_unique<FileRows>(store, table, shift);
}

}  // namespace Velora::Store
