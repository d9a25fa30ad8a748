#include "store/soundness/ExpectedSchema.h"

#include "store/reading/Rows.h"
#include "store/schema/BringUp.h"

namespace Velora::Store {

std::map<std::string, std::string> ExpectedSchema(int version) {
  const auto connection = ConnectToMemory();
  BringUpSqlite(*connection, 0, version);
  std::map<std::string, std::string> expected;
  for (Rows rows(*connection, schemaObjects); rows.Next();) {
    expected.emplace(rows.Text(0), rows.Text(1));
  }
  return expected;
}

}  // namespace Velora::Store
