#pragma once

#include <array>
#include <string>
#include <vector>

namespace Velora::Store {

/// A column of a store, with the type of its values in statements.
struct StoredColumn {
  enum class Type { Integer, Text, Number };

  std::string name;
  Type type;
};

/// A table of a store.
struct StoredTable {
  std::string name;
  std::vector<StoredColumn> columns;  ///< The first one is the key.

  const std::string& Key() const { return columns.front().name; }
  /// The names of all columns, separated by commas.
  std::string ColumnList() const;
};

/// All tables except events and parameters, each after the tables to which its rows refer.
const std::vector<StoredTable>& TablesBeforeEvents();
const StoredTable& EventTable();
const StoredTable& ParameterTable();

}  // namespace Velora::Store
