#include "store/copying/SqliteTarget.h"

#include "store/reading/Rows.h"
#include "store/recording/Writer.h"

namespace Velora::Store {
namespace {

/// Inserts each row with a prepared statement.
class FileRows : public RowWriter {
 public:
  FileRows(Connection& connection, const Table& table) : columns(table.columns) {
    std::string places;
    for (std::size_t place = 1; place <= columns.size(); ++place) {
      places += (place == 1 ? "?" : ", ?") + std::to_string(place);
    }
    insert = connection.Prepare("INSERT INTO " + table.name + " (" + table.ColumnList() + ") VALUES (" + places + ")");
  }

  void Add(const Rows& rows) override {
    insert->Restart();
    for (std::size_t at = 0; at < columns.size(); ++at) {
      const int column = static_cast<int>(at);
      const int place = column + 1;
      if (rows.IsNull(column)) {
        insert->Bind(place, nullptr);
      } else if (columns[at].type == Type::Text) {
        insert->Bind(place, rows.Whole(column));
      } else if (columns[at].type == Type::Number) {
        insert->Bind(place, rows.Number(column));
      } else {
        insert->Bind(place, rows.Integer(column));
      }
    }
    insert->Next();
  }
  void Flush() override {}

 private:
  const std::vector<Column> columns;
  std::unique_ptr<Cursor> insert;
};

}  // namespace

std::unique_ptr<RowWriter> SqliteTarget::RowsOf(const Table& table) {
  return std::make_unique<FileRows>(store.Sql(), table);
}

void SqliteTarget::WithoutGuardOfHistory(const std::function<void()>& work) {
  Connection& sql = store.Sql();
  const auto guard = sql.Find<std::string>("SELECT sql FROM sqlite_master WHERE name = 'ts_schema_no_delete'");
  sql.RunScript("DROP TRIGGER ts_schema_no_delete");
  work();
  sql.RunScript(guard.value());
}

}  // namespace Velora::Store
