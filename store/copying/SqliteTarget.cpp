#include "store/copying/SqliteTarget.h"

#include "store/reading/Rows.h"
#include "store/recording/Writer.h"
#include "store/soundness/ExpectedSchema.h"
#include "store/soundness/SqliteSoundness.h"

namespace Velora::Store {
namespace {

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

// SQLite knows no transaction without foreign keys, so they are off for this connection, before the transaction begins.
// They are off only for a new store: to check all rows of one that has others takes longer than to check each new one.
void SqliteTarget::Fill(bool isNew, const std::function<void()>& fill) {
  Connection& sql = store.Sql();
  sql.RunScript(std::string("PRAGMA foreign_keys = ") + (isNew ? "OFF" : "ON"));
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
  if (isNew) {
    ExpectNothingDangles(sql);
  }
  if (SchemaObjects(sql) != schema) {
    throw Error("the schema of '" + store.Name() + "' is not what it was before the rows were copied");
  }
  transaction.Commit();
  sql.RunScript("PRAGMA foreign_keys = ON");
}

}  // namespace Velora::Store
