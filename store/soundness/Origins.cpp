#include "store/soundness/Origins.h"

#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/Tables.h"

#include <set>

namespace Velora::Store {

namespace {

std::string RowOf(const Table& table, long long key) { return "row " + std::to_string(key) + " of " + table.name; }

/// An SQL expression for the number of the store that a row is from.
std::string StoreOfRow(const std::string& key) {
  return "CASE WHEN " + IsOfStore(key, thisStore) + " THEN 1 ELSE " + key + " / " + std::to_string(numbersOfAStore) +
         " END";
}

/// Looks up the first row of each other store. @return whether there is any.
bool FindStrangers(const Reader& store, const Table& table, const std::set<long long>& known,
                   std::vector<std::string>& findings) {
  Rows next(store, "SELECT MIN(" + table.Key() + ") FROM " + table.name + " WHERE " + table.Key() + " > ?1 AND " +
                       table.Key() + " < " + std::to_string(firstMonthlyKey));
  bool any = false;
  for (long long last = numbersOfAStore - 1; next.Ask(last).Next() && !next.IsNull(0); any = true) {
    const long long key = next.Integer(0);
    if (NumberOf(key) == 0) {
      findings.push_back(RowOf(table, key) + " is not numbered from 1");
    }
    if (!known.contains(StoreOf(key))) {
      findings.push_back(RowOf(table, key) + " is of a store that is not known here");
    }
    last = ShiftOf(StoreOf(key)) + numbersOfAStore - 1;
  }
  return any;
}

/// Looks at every reference of a table.
void FindMixtures(const Reader& store, const Table& table, std::vector<std::string>& findings) {
  for (const Column& column : table.columns) {
    if (column.refersTo.empty() || column.name == table.Key()) {
      continue;
    }
    const std::string except = table.record == "note" ? " AND NOT " + IsOfStore(table.Key(), thisStore) : "";
    Rows rows(store, "SELECT " + table.Key() + " FROM " + table.name + " WHERE " + StoreOfRow(table.Key()) + " <> " +
                         StoreOfRow(column.name) + except);
    while (rows.Next()) {
      findings.push_back(RowOf(table, rows.Integer(0)) + " refers to a row of another store in column " + column.name);
    }
  }
}

}  // namespace

std::vector<std::string> OriginFindings(const Reader& store) {
  std::set<long long> known;
  for (const KnownStore& one : KnownStores(store)) {
    known.insert(one.number);
  }
  std::vector<std::string> findings;
  bool any = false;
  for (const Table& table : TablesOf(store.SchemaVersion())) {
    any = FindStrangers(store, table, known, findings) || any;
  }
  for (const Table& table : TablesOf(store.SchemaVersion())) {
    if (any) {
      FindMixtures(store, table, findings);
    }
  }
  return findings;
}

}  // namespace Velora::Store
