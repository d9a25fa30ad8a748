#include "store/schema/Dialect.h"

#include <algorithm>

namespace Velora::Store {
namespace {

// SQLite stores each statement as it was given, and verify compares it: do not change the layout.
constexpr const char* margin = "         ";

std::string LimitsOf(const Column& column) {
  if (column.type == Type::Key) {
    return "";
  }
  return std::string(column.mayBeNull ? "" : " NOT NULL") + (column.isUnique ? " UNIQUE" : "") +
         (column.refersTo.empty() ? "" : " REFERENCES " + column.refersTo);
}

}  // namespace

void Dialect::Make(const Table& table) {
  std::size_t width = 0;
  for (const Column& column : table.columns) {
    width = std::max(width, column.name.size());
  }
  std::string lines;
  const auto add = [&lines](const std::string& line) { lines += (lines.empty() ? "\n" : ",\n") + (margin + line); };
  for (const Column& column : table.columns) {
    if (const std::string type = TypeOf(table, column); !type.empty()) {
      add(column.name + std::string(width + 1 - column.name.size(), ' ') + type + LimitsOf(column));
    }
  }
  if (!table.primaryKey.empty()) {
    add("PRIMARY KEY (" + Listed(table.primaryKey) + ')');
  }
  if (const std::string unique = UniqueTogether(table); !unique.empty()) {
    add(unique);
  }
  Add("CREATE TABLE " + table.name + " (" + lines + ')' + EndOf(table));
  MakeUnique(table);
  MakeIndexes(table, 1, table.since);
}

void Dialect::MakeIndexes(const Table& table, int first, int last) {
  for (const Index& index : table.indexes) {
    if (index.since >= first && index.since <= last) {
      Add("CREATE INDEX " + index.name + " ON " + table.name + MethodOf(index) + " (" + Listed(index.columns) + ')' +
          (index.ofRuns ? " WHERE parent_id IS NULL" : ""));
    }
  }
}

void Dialect::Make(const View& view) { Add("CREATE VIEW " + view.name + " AS\n       " + DefinitionOf(view)); }

}  // namespace Velora::Store
