#include "store/copying/SqliteTarget.h"

#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/soundness/ExpectedSchema.h"
#include "store/soundness/SqliteSoundness.h"

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

  void Add(const Rows& rows, std::string_view /*bytes*/) override {
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

using Triggers = std::vector<std::pair<std::string, std::string>>;

/// The names of all triggers, quoted, and the statements that make them.
Triggers TriggersOf(Connection& sql) {
  Triggers triggers;
  for (Rows rows(sql, "SELECT printf('\"%w\"', name), sql FROM sqlite_master WHERE type = 'trigger'"); rows.Next();) {
    triggers.emplace_back(rows.Whole(0), rows.Whole(1));
  }
  return triggers;
}

void ExpectNothingDangles(Connection& sql) {
  for (const std::string& finding : DanglingReferences(sql)) {
    throw Error("'" + sql.Name() + "' cannot be filled: " + finding);
  }
}

}  // namespace

std::unique_ptr<RowWriter> SqliteTarget::RowsOf(const Table& table) {
  return std::make_unique<FileRows>(store.Sql(), table);
}

// SQLite knows no transaction without foreign keys, so they are off for this connection, before the transaction begins.
void SqliteTarget::Fill(const std::function<void()>& fill) {
  Connection& sql = store.Sql();
  sql.RunScript("PRAGMA foreign_keys = OFF");
  Transaction transaction(store);
  const Triggers triggers = TriggersOf(sql);
  const auto schema = SchemaObjects(sql);
  for (const auto& [name, statement] : triggers) {
    sql.RunScript("DROP TRIGGER " + name);
  }
  fill();
  for (const auto& [name, statement] : triggers) {
    sql.RunScript(statement);
  }
  ExpectNothingDangles(sql);
  if (SchemaObjects(sql) != schema) {
    throw Error("the schema of '" + store.Name() + "' is not what it was before the rows were copied");
  }
  transaction.Commit();
  sql.RunScript("PRAGMA foreign_keys = ON");
}

}  // namespace Velora::Store
