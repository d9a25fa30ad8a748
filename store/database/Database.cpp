#include "store/database/Database.h"

#include "store/database/PostgreSqlAddress.h"

#include <filesystem>

namespace Velora::Store {

std::string NameOf(const Database& database) {
  return database.kind == Database::Kind::PostgreSql ? NameOfDatabaseAt(database.where) : database.where;
}

std::string FolderOf(const Database& database) {
  return database.kind == Database::Kind::Sqlite ? std::filesystem::path(database.where).parent_path().string() : "";
}

}  // namespace Velora::Store
