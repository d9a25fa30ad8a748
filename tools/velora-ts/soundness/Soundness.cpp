#include "soundness/Soundness.h"

#include "reading/Rows.h"
#include "reading/Store.h"
#include "soundness/PostgreSqlSoundness.h"
#include "soundness/SqliteSoundness.h"

#include <utility>

namespace {

// Executions that no run has, or another one than that of their parent, and what is wrong with them.
constexpr std::pair<const char*, const char*> misplaced[] = {
    {"SELECT x.execution_id FROM executions x LEFT JOIN executions r ON r.execution_id = COALESCE(x.parent_id, "
     "x.execution_id) WHERE x.root_id IS DISTINCT FROM "
     "CASE WHEN x.parent_id IS NULL THEN x.execution_id ELSE r.root_id END",
     "another root than its parent"},
    {"SELECT x.execution_id FROM executions x JOIN executions r ON r.execution_id = x.root_id "
     "WHERE r.parent_id IS NOT NULL",
     "a root that is none"},
};

bool IsOnServer(const Store& store) { return store.Kind() == Store::Database::Kind::PostgreSql; }

}  // namespace

Findings SchemaFindings(const Store& store) {
  return IsOnServer(store) ? PostgreSqlSchemaFindings(store) : Findings{SqliteSchemaFindings(store), ""};
}

std::vector<std::string> DamageFindings(const Store& store) {
  std::vector<std::string> findings = IsOnServer(store) ? PostgreSqlDamageFindings(store) : SqliteDamageFindings(store);
  for (const auto& [question, wrong] : misplaced) {
    for (Rows rows(store, question); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of executions has " + wrong);
    }
  }
  return findings;
}
