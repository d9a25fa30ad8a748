#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

/// Rows are numbered from 1 up to this, the last whole number up to which every program reads them all exactly.
inline constexpr long long highestKey = 9'007'199'254'740'992;

/// What the values of a column are.
enum class Type { Key, Integer, Text, Number };

/// A column of a table.
struct Column {
  std::string name;
  Type type = Type::Text;
  std::string meaning;
  std::string refersTo = "";  ///< The table whose key it holds; empty for none.
  bool mayBeNull = false;
  bool isUnique = false;
  bool leadsRecord = false;  ///< In a record it stands directly behind the number.

  /// As the record format calls it, where a reference is the guid of what is meant.
  std::string Field() const;
};

/// An index that a question needs.
struct Index {
  std::string name;
  std::vector<std::string> columns;
};

/// A table of a store.
struct Table {
  std::string name;
  std::string record;                            ///< As records, and the numbers in seals, call a row.
  std::vector<Column> columns;                   ///< The first one is the key, or the first of `primaryKey`.
  std::vector<std::string> primaryKey = {};      ///< Of several columns; empty where the first one is the key.
  std::vector<std::string> uniqueTogether = {};  ///< Columns of which no two rows have the same values.
  std::vector<Index> indexes = {};
  bool hostsAdd = true;    ///< Whether the role of hosts may add rows.
  bool isByMonth = false;  ///< Whether a server keeps each month of events apart.
  int since = 1;           ///< The first version of the schema that has it.

  const std::string& Key() const { return columns.front().name; }
  /// The column that counts from 1 on, in the table or among the rows of one event.
  const std::string& Number() const { return primaryKey.empty() ? Key() : primaryKey.back(); }
  /// The names of all columns, as a statement lists them.
  std::string ColumnList() const;
  /// The columns in the order in which a record has them.
  std::vector<Column> RecordColumns() const;
};

/// SQLite has a key of this name in every table, without its being declared.
inline constexpr const char* undeclaredKey = "rowid";

/// Names as a statement lists them.
std::string Listed(const std::vector<std::string>& names);

}  // namespace Velora::Store
