#include "store/copying/PostgreSqlTarget.h"

#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/values/Json.h"

#include <cmath>

namespace Velora::Store {
namespace {

constexpr long long keysInAMonth = 10'000'000'000;  // docs/postgresql.md
constexpr long long firstMonth = 200001;

const char* TypeOf(const Column& column) {
  return column.type == Type::Text ? " text" : column.type == Type::Number ? " double precision" : " bigint";
}

/// Inserts many rows with one statement, because each statement is a round trip.
class ServerRows : public RowWriter {
 public:
  ServerRows(Connection& connection, const Table& table) : connection(connection), columns(table.columns) {
    std::string typed;
    for (const Column& column : columns) {
      typed += (typed.empty() ? "" : ", ") + column.name + TypeOf(column);
    }
    statement = "INSERT INTO " + table.name + " (" + table.ColumnList() + ") SELECT " + table.ColumnList() +
                " FROM json_to_recordset(CAST(?1 AS json)) AS given(" + typed + ")";
  }

  void Add(const Rows& rows) override {
    json += count++ == 0 ? "[{" : ",{";
    for (std::size_t at = 0; at < columns.size(); ++at) {
      const int column = static_cast<int>(at);
      json += (at == 0 ? "\"" : ",\"") + columns[at].name + "\":";
      if (columns[at].type == Type::Number && std::isinf(rows.Number(column))) {
        AppendServerNumber(json, rows.Number(column));
      } else {
        rows.AppendValue(json, column);
      }
    }
    json += '}';
    if (count == rowsAtOnce || json.size() > bytesAtOnce) {
      Flush();
    }
  }
  void Flush() override {
    if (count > 0) {
      json += ']';
      connection.Run(statement, json);
      json.clear();
      count = 0;
    }
  }

 private:
  static constexpr int rowsAtOnce = 1000;
  static constexpr std::size_t bytesAtOnce = 1'000'000;

  Connection& connection;
  const std::vector<Column> columns;
  std::string statement;
  std::string json;
  int count = 0;
};

}  // namespace

std::unique_ptr<RowWriter> PostgreSqlTarget::RowsOf(const Table& table) {
  return std::make_unique<ServerRows>(store.Sql(), table);
}

void PostgreSqlTarget::WithoutGuardOfHistory(const std::function<void()>& work) {
  store.Sql().RunScript("ALTER TABLE ts_schema DISABLE TRIGGER ts_schema_no_change");
  work();
  store.Sql().RunScript("ALTER TABLE ts_schema ENABLE TRIGGER ts_schema_no_change");
}

void PostgreSqlTarget::MakeRoomFor(long long event) {
  const long long month = event / keysInAMonth;
  if (month >= firstMonth && month != lastMonth) {
    store.Sql().RunScript("SELECT make_partition(" + std::to_string(month) + ")");
    lastMonth = month;
  }
}

void PostgreSqlTarget::Finish() {
  Connection& sql = store.Sql();
  sql.RunScript("SET statement_timeout = 0");
  Transaction transaction(store);
  for (const Table& table : TablesBesideEvents()) {
    sql.RunScript("SELECT setval(pg_get_serial_sequence('" + table.name + "', '" + table.Key() + "'), COALESCE(MAX(" +
                  table.Key() + "), 0) + 1, false) FROM " + table.name);
  }
  sql.RunScript("SELECT setval('event_numbers', COALESCE(MAX(event_id % " + std::to_string(keysInAMonth) +
                "), 0) + 1, false) FROM events");
  transaction.Commit();
  sql.RunScript("ANALYZE");  // else the server plans the first queries for empty tables
}

}  // namespace Velora::Store
