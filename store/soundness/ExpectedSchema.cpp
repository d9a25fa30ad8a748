#include "store/soundness/ExpectedSchema.h"

#include "store/reading/Rows.h"
#include "store/schema/BringUp.h"

namespace Velora::Store {

std::map<std::string, std::string> SchemaObjects(Connection& connection) {
  std::map<std::string, std::string> objects;
  for (Rows rows(connection, schemaObjects); rows.Next();) {
    objects.emplace(rows.Text(0), rows.Text(1));
  }
  return objects;
}

std::map<std::string, std::string> ExpectedSchema(int version) {
  const auto connection = ConnectToMemory();
  BringUpSqlite(*connection, 0, version);
  return SchemaObjects(*connection);
}

}  // namespace Velora::Store
