#include "store/soundness/Soundness.h"

#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Unfinished.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"
#include "store/schema/Versions.h"
#include "store/soundness/PostgreSqlSoundness.h"
#include "store/soundness/SqliteSoundness.h"

#include <utility>

namespace Velora::Store {

namespace {

// Queries for executions whose root is wrong, and what is wrong with it.
constexpr std::pair<const char*, const char*> misplaced[] = {
    {"SELECT x.execution_id FROM executions x LEFT JOIN executions r ON r.execution_id = COALESCE(x.parent_id, "
     "x.execution_id) WHERE x.root_id IS DISTINCT FROM "
     "CASE WHEN x.parent_id IS NULL THEN x.execution_id ELSE r.root_id END",
     "a root that is not that of its parent"},
    {"SELECT x.execution_id FROM executions x JOIN executions r ON r.execution_id = x.root_id "
     "WHERE r.parent_id IS NOT NULL",
     "a root that has a parent"},
};

/// A query for the notes that no seal of a run covers.
std::string NotesOfNoRun(const Reader& store) {
  return "SELECT n.note_id FROM " + NotesIn(store) +
         " n JOIN executions x ON x.execution_id = n.root_id WHERE x.parent_id IS NOT NULL";
}

// What NotesRunning() promises: readers would not see that these did not finish.
constexpr const char* notNoted =
    "SELECT x.execution_id FROM executions x WHERE 4 = (SELECT code FROM statuses WHERE execution_id = x.execution_id "
    "ORDER BY status_id DESC LIMIT 1) AND NOT EXISTS (SELECT 1 FROM running WHERE execution_id = x.execution_id)";

/// A query for the rows whose number is outside the range that hosts use.
std::string WrongNumbers(const Table& table) {
  const auto wrong = [](const std::string& key) { return key + " < 1 OR " + key + " > " + std::to_string(highestKey); };
  return "SELECT " + table.Key() + " FROM " + table.name + " WHERE " + wrong(table.Key()) +
         (table.primaryKey.empty() ? "" : " OR " + wrong(table.Number()));
}

/// A query for the rows of a store that `stores` does not name, and for those that no store has.
std::string RowsOfNoStore(const Table& table) {
  const std::string shift = std::to_string(numbersOfAStore), key = "x." + table.Key();
  return "SELECT " + key + " FROM " + table.name + " x WHERE " + key + " BETWEEN " + shift + " AND " +
         std::to_string(firstMonthlyKey - 1) + " AND (" + key + " % " + shift + " = 0 OR " + key + " < " +
         std::to_string(2 * numbersOfAStore) + " OR NOT EXISTS (SELECT 1 FROM stores WHERE store_id = " + key + " / " +
         shift + " * " + shift + " + 1))";
}

bool IsOnServer(const Reader& store) { return store.Where().kind == Database::Kind::PostgreSql; }

}  // namespace

Findings SchemaFindings(const Reader& store) {
  if (store.SchemaVersion() > schemaVersion) {
    return {{},
            "the schema and the rights on it: a newer program made version " + std::to_string(store.SchemaVersion())};
  }
  return IsOnServer(store) ? PostgreSqlSchemaFindings(store) : Findings{SqliteSchemaFindings(store), ""};
}

std::vector<std::string> DamageFindings(const Reader& store, const std::function<void()>& working) {
  std::vector<std::string> findings =
      IsOnServer(store) ? PostgreSqlDamageFindings(store) : SqliteDamageFindings(store, working);
  for (const auto& [question, wrong] : misplaced) {
    for (Rows rows(store, question); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of executions has " + wrong);
    }
  }
  for (Rows rows(store, NotesOfNoRun(store)); rows.Next();) {
    findings.push_back("row " + std::string(rows.Text(0)) + " of notes is about an execution that is no run");
  }
  if (NotesRunning(store)) {
    for (Rows rows(store, notNoted); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of executions did not finish, but running lacks it");
    }
  }
  return findings;
}

std::vector<std::string> MissingRoom(const Reader& store) {
  return IsOnServer(store) ? MissingPartitions(store) : std::vector<std::string>();
}

std::vector<std::string> ValueFindings(const Reader& store) {
  std::vector<std::string> findings;
  for (const Table& table : TablesOf(store.SchemaVersion())) {
    for (Rows rows(store, WrongNumbers(table)); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of " + table.name + " is not numbered from 1 to " +
                         std::to_string(highestKey));
    }
    if (table.primaryKey.empty() && store.SchemaVersion() >= TableNamed("stores").since) {
      for (Rows rows(store, RowsOfNoStore(table)); rows.Next();) {
        findings.push_back("row " + std::string(rows.Text(0)) + " of " + table.name +
                           " is from a store that is not in stores");
      }
    }
    if (IsOnServer(store)) {
      continue;  // which keeps no other types
    }
    for (Rows rows(store, SqliteWrongTypes(table)); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of " + table.name +
                         " has a value of the wrong type in column " + std::string(rows.Text(1)));
    }
  }
  return findings;
}

}  // namespace Velora::Store
