#include "copying/RowWriter.h"

#include "Connection.h"
#include "Statement.h"
#include "output/Json.h"
#include "reading/Rows.h"

#include <cmath>
#include <deque>

namespace Velora::Ts {

namespace Local = Quor::TolvaServices::Local;

namespace {

/// One prepared statement for each row: a file is near.
class FileWriter : public RowWriter {
 public:
  FileWriter(soci::session& sql, const StoredTable& table) : columns(table.columns), insert(sql) {
    std::string places;
    for (const StoredColumn& column : columns) {
      Value& value = values.emplace_back();
      switch (column.type) {
        case StoredColumn::Type::Integer:
          insert.exchange(soci::use(value.integer, value.known));
          break;
        case StoredColumn::Type::Number:
          insert.exchange(soci::use(value.number, value.known));
          break;
        case StoredColumn::Type::Text:
          insert.exchange(soci::use(value.text, value.known));
      }
      places += (places.empty() ? ":" : ", :") + column.name;
    }
    insert.alloc();
    insert.prepare("INSERT INTO " + table.name + " (" + table.ColumnList() + ") VALUES (" + places + ")");
    insert.define_and_bind();
  }

  void Add(const Rows& rows) override {
    for (std::size_t at = 0; at < columns.size(); ++at) {
      const int column = static_cast<int>(at);
      values[at].known = rows.IsNull(column) ? soci::i_null : soci::i_ok;
      switch (columns[at].type) {
        case StoredColumn::Type::Integer:
          values[at].integer = rows.Integer(column);
          break;
        case StoredColumn::Type::Number:
          values[at].number = rows.IsNull(column) ? 0 : rows.Number(column);
          break;
        case StoredColumn::Type::Text:
          values[at].text = rows.Whole(column);
      }
    }
    insert.execute(true);
  }
  void Flush() override {}

 private:
  struct Value {
    long long integer = 0;
    double number = 0;
    std::string text;
    soci::indicator known = soci::i_ok;
  };

  const std::vector<StoredColumn> columns;
  std::deque<Value> values;  // which stay where they are
  soci::statement insert;
};

/// One statement for many rows: a server may be far away.
class ServerWriter : public RowWriter {
 public:
  ServerWriter(soci::session& sql, const StoredTable& table) : sql(sql), columns(table.columns) {
    static const std::string types[] = {" bigint", " text", " double precision"};
    std::string typed;
    for (const StoredColumn& column : columns) {
      typed += (typed.empty() ? "" : ", ") + column.name + types[static_cast<int>(column.type)];
    }
    statement = "INSERT INTO " + table.name + " (" + table.ColumnList() + ") SELECT " + table.ColumnList() +
                " FROM json_to_recordset(CAST(:rows AS json)) AS given(" + typed + ")";
  }

  void Add(const Rows& rows) override {
    json += count++ == 0 ? "[{" : ",{";
    for (std::size_t at = 0; at < columns.size(); ++at) {
      const int column = static_cast<int>(at);
      json += (at == 0 ? "\"" : ",\"") + columns[at].name + "\":";
      if (columns[at].type == StoredColumn::Type::Number && std::isinf(rows.Number(column))) {
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
      Local::Execute(sql, statement, soci::use(json));
      json.clear();
      count = 0;
    }
  }

 private:
  static constexpr int rowsAtOnce = 1000;
  static constexpr std::size_t bytesAtOnce = 1'000'000;

  soci::session& sql;
  const std::vector<StoredColumn> columns;
  std::string statement;
  std::string json;
  int count = 0;
};

}  // namespace

std::unique_ptr<RowWriter> MakeRowWriter(Local::Connection& connection, bool onServer, const StoredTable& table) {
  if (onServer) {
    return std::make_unique<ServerWriter>(connection.Sql(), table);
  }
  return std::make_unique<FileWriter>(connection.Sql(), table);
}

}  // namespace Velora::Ts
