#include "store/schema/Table.h"

#include <algorithm>

namespace Velora::Store {

std::string Column::Field() const {
  if (type == Type::Key) {
    return "number";
  }
  return refersTo.empty() ? name : name.substr(0, name.rfind("_id"));
}

std::string Table::ColumnList() const {
  std::vector<std::string> names;
  for (const Column& column : columns) {
    names.push_back(column.name);
  }
  return Listed(names);
}

std::vector<Column> Table::RecordColumns() const {
  std::vector<Column> ordered = columns;
  std::stable_partition(ordered.begin() + 1, ordered.end(), [](const Column& column) { return column.leadsRecord; });
  return ordered;
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + name;
  }
  return list;
}

}  // namespace Velora::Store
