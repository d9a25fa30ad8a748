#include "store/copying/StoredTables.h"

#include <initializer_list>

namespace Velora::Store {

namespace {

StoredTable Make(const std::string& name, std::initializer_list<const char*> integers,
                 std::initializer_list<const char*> texts) {
  StoredTable table{name, {}};
  for (const char* column : integers) {
    table.columns.push_back({column, StoredColumn::Type::Integer});
  }
  for (const char* column : texts) {
    table.columns.push_back({column, StoredColumn::Type::Text});
  }
  return table;
}

}  // namespace

std::string StoredTable::ColumnList() const {
  std::string list;
  for (const StoredColumn& column : columns) {
    list += (list.empty() ? "" : ", ") + column.name;
  }
  return list;
}

const std::vector<StoredTable>& TablesBeforeEvents() {
  static const std::vector<StoredTable> tables = {
      Make("ts_schema", {"rowid", "version"}, {"created_at"}),
      Make("sessions", {"session_id"}, {"guid", "instrument", "host", "began_at", "text1", "text2", "text3"}),
      Make("activities", {"activity_id"}, {"guid", "name", "description"}),
      Make("activity_versions", {"version_id", "activity_id"}, {"guid", "name", "version", "description"}),
      Make("registrations", {"rowid", "session_id", "version_id"}, {"file", "registered_at"}),
      Make("configurations", {"configuration_id", "session_id"},
           {"guid", "saved_at", "configuration_text", "text2", "vendor_name", "host_name", "option_text",
            "instrument_class", "model_name", "text8", "text9"}),
      Make("executions", {"execution_id", "parent_id", "root_id", "session_id", "version_id", "kind"},
           {"guid", "node", "description", "started_at"}),
      Make("statuses", {"status_id", "execution_id", "session_id", "code"}, {"at"}),
      Make("seals", {"seal_id", "schema_version"},
           {"run", "sealed_at", "up_to", "counts", "content_hash", "previous_hash", "tool_version", "seal_hash"}),
  };
  return tables;
}

const StoredTable& EventTable() {
  static const StoredTable table =
      Make("events", {"event_id", "session_id", "execution_id", "configuration_id"}, {"name", "at"});
  return table;
}

const StoredTable& ParameterTable() {
  static const StoredTable table = [] {
    StoredTable made = Make("parameters", {"event_id", "position"}, {"name", "kind", "value_text"});
    made.columns.push_back({"value_number", StoredColumn::Type::Number});
    return made;
  }();
  return table;
}

}  // namespace Velora::Store
