#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// The highest number of a row. Up to this number, every program reads all whole numbers exactly.
inline constexpr long long highestKey = 9'007'199'254'740'992;

/// The type of the values of a column.
enum class Type { Key, Integer, Text, Number };

/// A column of a table.
struct Column {
  std::string name;
  Type type = Type::Text;
  std::string meaning;
  std::string refersTo = "";  ///< The table whose key it holds; empty for none.
  bool mayBeNull = false;
  bool isUnique = false;
  bool leadsRecord = false;  ///< In a record, the field comes directly after the number.

  /// Whether its values are keys, of the row itself or of another.
  bool HoldsKey() const { return type == Type::Key || !refersTo.empty(); }
  /// The name of the field in a record. There, a reference is a guid.
  std::string Field() const;
};

/// An index that queries need.
struct Index {
  std::string name;
  std::vector<std::string> columns;
  bool ofRuns = false;     ///< Whether it has only executions without a parent, so that others cost nothing.
  int since = 1;           ///< The first version of the schema that has it.
  bool ofAnyText = false;  ///< Whether its texts can be longer than a page, and are only looked up, never sorted.
};

/// A table of a store.
struct Table {
  std::string name;
  std::string record;                            ///< The name of a row in records and in seals.
  std::vector<Column> columns;                   ///< The first one is the key, or the first of `primaryKey`.
  std::vector<std::string> primaryKey = {};      ///< If it has several columns; empty if the first column is the key.
  std::vector<std::string> uniqueTogether = {};  ///< Columns whose values together are unique.
  /// Columns whose values together are unique among the rows of one store.
  std::vector<std::vector<std::string>> uniquePerStore = {};
  std::vector<Index> indexes = {};
  bool hostsAdd = true;    ///< Whether hosts record into it.
  bool isByMonth = false;  ///< Whether a server has a partition for each month of events.
  int since = 1;           ///< The first version of the schema that has it.

  const std::string& Key() const { return columns.front().name; }
  /// The column that numbers rows from 1, in the table or in one event.
  const std::string& Number() const { return primaryKey.empty() ? Key() : primaryKey.back(); }
  /// The names of all columns, separated by commas.
  std::string ColumnList() const;
  /// The columns in the order of the fields of a record.
  std::vector<Column> RecordColumns() const;
};

/// The key that SQLite has in every table without a declaration.
inline constexpr const char* undeclaredKey = "rowid";

/// Names, separated by commas.
std::string Listed(const std::vector<std::string>& names);

}  // namespace Velora::Store
