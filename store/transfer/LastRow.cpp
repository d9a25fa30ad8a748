#include "store/transfer/LastRow.h"

#include "store/reading/Rows.h"
#include "store/schema/Tables.h"
#include "store/transfer/RowBytes.h"

namespace Velora::Store {

std::string RowWith(Connection& store, const Table& table, long long key, long long shift) {
  std::string bytes;
  Rows rows(store, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() +
                       " = ?1 ORDER BY " + table.Number());
  for (rows.Ask(key); rows.Next();) {
    AppendRow(bytes, rows, table, shift);
  }
  if (table.name == "events" && !bytes.empty()) {
    bytes += RowWith(store, TableNamed("parameters"), key, shift);
  }
  return bytes;
}

std::string WhyNoneCanFollow(const std::string& store, const std::string& row, const Table& table, long long number,
                             const std::string& other) {
  return "TS store '" + store + "' " + (row.empty() ? "has no" : "has another") + " row " + std::to_string(number) +
         " of " + table.name + (row.empty() ? ", which" : " than") + " '" + other + "' has from this store: " +
         (row.empty() ? "it is an older copy of itself" : "it was copied, and both copies recorded") +
         "; expected the file from which that row came, or velora-ts rotate, which begins a new one and leaves this "
         "one to be read";
}

}  // namespace Velora::Store
