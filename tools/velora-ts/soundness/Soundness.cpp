#include "soundness/Soundness.h"

#include "reading/Rows.h"
#include "reading/Store.h"
#include "soundness/PostgreSqlSoundness.h"
#include "soundness/SqliteSoundness.h"

namespace {

bool IsOnServer(const Store& store) { return store.Kind() == Store::Database::Kind::PostgreSql; }

}  // namespace

std::vector<std::string> SchemaFindings(const Store& store) {
  return IsOnServer(store) ? PostgreSqlSchemaFindings(store) : SqliteSchemaFindings(store);
}

std::vector<std::string> DamageFindings(const Store& store) {
  std::vector<std::string> findings = IsOnServer(store) ? PostgreSqlDamageFindings(store) : SqliteDamageFindings(store);
  Rows strays(store,
              "SELECT x.execution_id FROM executions x LEFT JOIN executions r ON r.execution_id = "
              "COALESCE(x.parent_id, x.execution_id) WHERE x.root_id IS DISTINCT FROM "
              "CASE WHEN x.parent_id IS NULL THEN x.execution_id ELSE r.root_id END");
  while (strays.Next()) {
    findings.push_back("row " + std::string(strays.Text(0)) + " of executions has another root than its parent");
  }
  Rows ofNoRun(store,
               "SELECT x.execution_id FROM executions x JOIN executions r ON r.execution_id = x.root_id "
               "WHERE r.parent_id IS NOT NULL");
  while (ofNoRun.Next()) {
    findings.push_back("row " + std::string(ofNoRun.Text(0)) + " of executions has a root that is none");
  }
  return findings;
}
