#include "store/copying/CopyTarget.h"

#include "store/copying/PostgreSqlTarget.h"
#include "store/copying/SqliteTarget.h"
#include "store/database/Database.h"

namespace Velora::Store {

std::unique_ptr<CopyTarget> MakeCopyTarget(Writer& store, const Database& database) {
  if (database.kind == Database::Kind::PostgreSql) {
    return std::make_unique<PostgreSqlTarget>(store);
  }
  return std::make_unique<SqliteTarget>(store);
}

}  // namespace Velora::Store
