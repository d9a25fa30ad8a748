#pragma once

#include <array>
#include <string>
#include <vector>

namespace Velora::Store {

/// A column of a store, by what its values are bound as.
struct StoredColumn {
  enum class Type { Integer, Text, Number };

  std::string name;
  Type type;
};

/// A table of a store.
struct StoredTable {
  std::string name;
  std::vector<StoredColumn> columns;  ///< The first one numbers the rows.

  const std::string& Key() const { return columns.front().name; }
  /// The names of all columns, as a statement lists them.
  std::string ColumnList() const;
};

/// All tables but those of events and parameters, in an order in which rows follow what they refer to.
const std::vector<StoredTable>& TablesBeforeEvents();
const StoredTable& EventTable();
const StoredTable& ParameterTable();

}  // namespace Velora::Store
