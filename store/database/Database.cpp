#include "store/database/Database.h"

#include "store/database/PostgreSqlAddress.h"

#include <VeloraSystem/Path.h>

namespace Velora::Store {

std::string NameOf(const Database& database) {
  return database.kind == Database::Kind::PostgreSql ? NameOfDatabaseAt(database.where) : database.where;
}

std::string FolderOf(const Database& database) {
  return database.kind == Database::Kind::Sqlite ? System::TextOf(System::PathOf(database.where).parent_path()) : "";
}

}  // namespace Velora::Store
