#include "support/TakenIn.h"

#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"

using namespace Velora::Store;

std::string TakingIn(long long number, const std::string& from, const std::string& guid) {
  const std::string shift = " + " + std::to_string(ShiftOf(number) - ShiftOf(thisStore));
  std::string statements;
  for (const Table& table : Tables()) {
    std::string values;
    for (const Column& column : table.columns) {
      const bool isKey = column.type == Type::Key || !column.refersTo.empty();
      values +=
          (values.empty() ? "" : ", ") + (column.name == "guid" ? guid : column.name + (isKey ? shift : std::string()));
    }
    statements += "INSERT INTO " + table.name + " (" + table.ColumnList() + ") SELECT " + values + " FROM " + from +
                  table.name + ";\n";
  }
  return statements;
}
