#include "store/schema/SqliteDialect.h"

#include "store/schema/Running.h"
#include "store/schema/StoreNumbers.h"

namespace Velora::Store {
namespace {

std::string SameAsNew(const std::string& column) { return column + " = NEW." + column; }

std::string SameAsNew(const std::vector<std::string>& columns) {
  std::string same;
  for (const std::string& column : columns) {
    same += same.empty() ? "" : " AND ";
    same += SameAsNew(column);
  }
  return same;
}

/// The rows that a new row would replace. The key of the new row is -1 until SQLite has chosen one.
std::string InTheWay(const Table& table) {
  std::vector<std::string> ways = {table.primaryKey.empty()
                                       ? SameAsNew(table.Key()) + " AND NEW." + table.Key() + " > 0"
                                       : SameAsNew(table.primaryKey)};
  for (const Column& column : table.columns) {
    if (column.isUnique) {
      ways.push_back(SameAsNew(column.name));
    }
  }
  if (!table.uniqueTogether.empty()) {
    ways.push_back(SameAsNew(table.uniqueTogether));
  }
  for (const std::vector<std::string>& names : table.uniquePerStore) {
    ways.push_back(SameAsNew(names) + " AND " + StoreOf(table.Key()) + " = " + StoreOf("NEW." + table.Key()));
  }
  std::string any;
  for (const std::string& way : ways) {
    const bool apart = ways.size() > 1 && way.find(" AND ") != std::string::npos;
    any += (any.empty() ? "" : " OR ") + (apart ? '(' + way + ')' : way);
  }
  return any;
}

}  // namespace

// SQLite cannot take a constraint away, so the table is made again. Other tables refer to it by its name, and their
// foreign keys must be off.
void SqliteDialect::MakeUniquePerStore(const Table& table) {
  const std::string kept = table.name + "_kept";
  Add("CREATE TABLE " + kept + " AS SELECT * FROM " + table.name);
  Add("DROP TABLE " + table.name);
  Make(table);
  Add("INSERT INTO " + table.name + " SELECT * FROM " + kept);
  Add("DROP TABLE " + kept);
  KeepRows(table);
}

void SqliteDialect::MakeUnique(const Table& table) {
  for (const std::vector<std::string>& names : table.uniquePerStore) {
    Add("CREATE UNIQUE INDEX " + table.name + (names.size() == 1 ? '_' + names.front() : "_once") + " ON " +
        table.name + " (" + Listed(names) + ", " + StoreOf(table.Key()) + ')');
  }
}

void SqliteDialect::Replace(const View& view) {
  Add("DROP VIEW " + view.name);
  Make(view);
}

// The third trigger is for INSERT OR REPLACE, which deletes rows without calling their triggers.
void SqliteDialect::KeepRows(const Table& table) {
  AddTrigger(table, "update", "UPDATE ON " + table.name);
  AddTrigger(table, "delete", "DELETE ON " + table.name);
  AddTrigger(
      table, "replace",
      "INSERT ON " + table.name + " WHEN EXISTS (SELECT 1 FROM " + table.name + " WHERE " + InTheWay(table) + ")");
}

void SqliteDialect::AddTrigger(const Table& table, const std::string& action, const std::string& when) {
  Add("CREATE TRIGGER " + table.name + "_no_" + action + " BEFORE " + when + " BEGIN SELECT RAISE(ABORT, 'rows of " +
      table.name + " are only ever added'); END");
}

// Checked after the insertion, because SQLite can choose the key during it: behind the rows of another store, if there
// are any. A copy of a server continues the numbers of its events. Only a position can be another type than a whole
// number.
void SqliteDialect::NumberRows(const Table& table) {
  const std::string number = "NEW." + table.Number();
  const std::string highest = std::to_string(numbersOfAStore - 1);
  const std::string ofAServer =
      table.isByMonth && table.primaryKey.empty()
          ? " AND " + number + " NOT BETWEEN " + std::to_string(firstMonthlyKey) + " AND " + std::to_string(highestKey)
          : "";
  Add("CREATE TRIGGER " + table.name + "_numbers AFTER INSERT ON " + table.name + " WHEN " + number +
      " NOT BETWEEN 1 AND " + highest + ofAServer + " OR typeof(" + number +
      ") <> 'integer' BEGIN SELECT RAISE(ABORT, 'rows of " + table.name + " are numbered from 1 to " + highest +
      "'); END");
}

// The key is -1 until SQLite has chosen one.
void SqliteDialect::RefuseOldSeals() {
  Add("CREATE TRIGGER seals_with_others BEFORE INSERT ON seals WHEN NEW.schema_version < 3 AND " +
      IsOwn("NEW.seal_id") + " AND EXISTS (SELECT 1 FROM stores WHERE NOT " + IsOwn("store_id") +
      ") BEGIN SELECT RAISE(ABORT, '" + oldSeal + "'); END");
}

void SqliteDialect::NoteRunning() {
  Add("CREATE TABLE running (execution_id INTEGER PRIMARY KEY, status_id INTEGER NOT NULL)");
  Add(Running::fill);
  Add("CREATE TRIGGER statuses_begin AFTER INSERT ON statuses WHEN NEW.code = 4 BEGIN " + std::string(Running::note) +
      "; END");
  Add("CREATE TRIGGER statuses_end AFTER INSERT ON statuses WHEN NEW.code <> 4 BEGIN " + std::string(Running::remove) +
      "; END");
}

std::string SqliteDialect::TypeOf(const Table& /*table*/, const Column& column) const {
  switch (column.type) {
    case Type::Key:
      return column.name == undeclaredKey ? "" : "INTEGER PRIMARY KEY";
    case Type::Integer:
      return "INTEGER";
    case Type::Number:
      return "REAL";
    default:
      return "TEXT";
  }
}

std::string SqliteDialect::UniqueTogether(const Table& table) const {
  return table.uniqueTogether.empty() ? "" : "UNIQUE (" + Listed(table.uniqueTogether) + ')';
}

}  // namespace Velora::Store
