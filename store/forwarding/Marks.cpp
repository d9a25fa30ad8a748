#include "store/forwarding/Marks.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"

namespace Velora::Store {
namespace {

/// The column with the time of a row's recording; nothing if there is none.
const Column* TimeIn(const Table& table) {
  for (const Column& column : table.columns) {
    if (column.name == "at" || column.name.ends_with("_at")) {
      return &column;
    }
  }
  return nullptr;
}

std::string FirstTimeBehind(const Reader& file, const Table& table, long long mark) {
  if (const Column* const time = TimeIn(table)) {
    Rows first(file, "SELECT " + time->name + " FROM " + table.name + " WHERE " + table.Key() + " > ?1 ORDER BY " +
                         table.Key() + " LIMIT 1");
    if (first.Ask(mark).Next()) {
      return std::string(first.Text(0));
    }
  }
  return "";
}

}  // namespace

std::vector<Table> MarkedTables(int version) {
  std::vector<Table> tables = TablesOf(version);
  std::erase_if(tables, [](const Table& table) { return !table.primaryKey.empty(); });
  return tables;
}

std::string MarksQuestion(int version, long long store) {
  std::vector<std::string> highest;
  for (const Table& table : MarkedTables(version)) {
    const std::string which = store == thisStore ? "" : " WHERE " + IsOfStore(table.Key(), store);
    highest.push_back("(SELECT COALESCE(MAX(" + table.Key() + ") - " + std::to_string(ShiftOf(store)) + ", 0) FROM " +
                      table.name + which + ")");
  }
  return "SELECT " + Listed(highest);
}

Marks MarksOf(const Reader& file) {
  const auto cursor = file.Sql().PrepareShort(MarksQuestion(file.SchemaVersion(), thisStore));
  cursor->Next();
  Marks marks;
  int column = 0;
  for (const Table& table : MarkedTables(file.SchemaVersion())) {
    marks[table.name] = cursor->Integer(column++);
  }
  return marks;
}

Waiting WaitingBehind(const Reader& file, const Marks& marks) {
  Waiting waiting;
  const Marks top = MarksOf(file);
  for (const Table& table : MarkedTables(file.SchemaVersion())) {
    const auto mark = marks.find(table.name);
    const long long from = mark == marks.end() ? 0 : mark->second;
    const long long rows = top.at(table.name) - from;
    if (rows <= 0) {
      continue;
    }
    waiting.rows += rows;
    waiting.events += table.name == "events" ? rows : 0;
    const std::string first = FirstTimeBehind(file, table, from);
    if (!first.empty() && (waiting.since.empty() || first < waiting.since)) {
      waiting.since = first;
    }
  }
  return waiting;
}

}  // namespace Velora::Store
