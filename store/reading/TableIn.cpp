#include "store/reading/TableIn.h"

#include "store/reading/Reader.h"
#include "store/schema/Table.h"

namespace Velora::Store {

std::string TableIn(const Reader& store, const Table& table) {
  if (store.SchemaVersion() >= table.since) {
    return table.name;
  }
  std::vector<std::string> columns;
  for (const Column& column : table.columns) {
    columns.push_back((column.type == Type::Text ? "'' AS " : "0 AS ") + column.name);
  }
  return "(SELECT " + Listed(columns) + " WHERE 1 = 0)";
}

}  // namespace Velora::Store
