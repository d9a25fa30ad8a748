#include "support/TakenIn.h"

#include "store/database/Connection.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"
#include "support/TestStore.h"

using namespace Velora::Store;

std::string TakingIn(long long number, const std::string& from, const std::string& guid) {
  // A server's own events have the month before the number.
  const std::string shift = " % " + std::to_string(numbersOfAStore) + " + " + std::to_string(ShiftOf(number));
  std::string statements;
  for (const Table& table : Tables()) {
    std::string values;
    for (const Column& column : table.columns) {
      const bool isKey = column.type == Type::Key || !column.refersTo.empty();
      values += (values.empty() ? "" : ", ") + (column.name == "guid" ? guid : column.name + (isKey ? shift : ""));
    }
    statements += "INSERT INTO " + table.name + " (" + table.ColumnList() + ") SELECT " + values + " FROM " + from +
                  table.name + " WHERE " + IsOfStore(table.Key(), thisStore) + ";\n";
  }
  return statements;
}

void TakeInItself(Connection& sql, long long number, const std::string& more) {
  std::string drops, makes;
  if (!TestStore::OnServer()) {
    const auto guards = sql.PrepareShort(
        "SELECT name, sql FROM sqlite_master WHERE type = 'trigger' AND name NOT IN ('statuses_begin', "
        "'statuses_end')");
    while (guards->Next()) {
      drops += "DROP TRIGGER " + std::string(guards->Text(0)) + ';';
      makes += std::string(guards->Text(1)) + ';';
    }
  }
  sql.RunScript(drops + TakingIn(number, "", "'" + std::to_string(number) + " of ' || guid") + more + makes);
}
