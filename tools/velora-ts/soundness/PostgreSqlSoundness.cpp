#include "soundness/PostgreSqlSoundness.h"

#include "PostgreSqlSchema.h"
#include "reading/Rows.h"

#include <map>
#include <set>

namespace Local = Quor::TolvaServices::Local;

namespace {

// The bits by which the server keeps when a trigger acts.
constexpr int noChange = 1 | 2 | 8 | 16;  // before update or delete, for each row
constexpr int noTruncate = 2 | 32;        // before truncate

constexpr const char* here = "c.relnamespace = CAST(quote_ident(current_schema()) AS regnamespace)";

/// The tables that hold records, partitions included, each with what it is to refuse.
std::map<std::string, std::set<int>> RecordedTables(const Store& store) {
  std::map<std::string, std::set<int>> tables;
  for (const char* table : Local::recordedTables) {
    tables[table] = {noChange, noTruncate};
  }
  const std::string partitions =
      "SELECT c.relname FROM pg_class c JOIN pg_inherits i ON i.inhrelid = c.oid JOIN pg_class p ON p.oid = "
      "i.inhparent WHERE p.relname IN ('events', 'parameters') AND ";
  for (Rows rows(store, partitions + here); rows.Next();) {
    tables[std::string(rows.Text(0))] = {noChange, noTruncate};
  }
  return tables;
}

struct Reference {
  const char* table;
  const char* key;
  const char* column;
  const char* target;
  const char* targetKey;
};

constexpr Reference references[] = {
    {"activity_versions", "version_id", "activity_id", "activities", "activity_id"},
    {"registrations", "rowid", "session_id", "sessions", "session_id"},
    {"registrations", "rowid", "version_id", "activity_versions", "version_id"},
    {"configurations", "configuration_id", "session_id", "sessions", "session_id"},
    {"executions", "execution_id", "parent_id", "executions", "execution_id"},
    {"executions", "execution_id", "root_id", "executions", "execution_id"},
    {"executions", "execution_id", "session_id", "sessions", "session_id"},
    {"executions", "execution_id", "version_id", "activity_versions", "version_id"},
    {"statuses", "status_id", "execution_id", "executions", "execution_id"},
    {"statuses", "status_id", "session_id", "sessions", "session_id"},
    {"events", "event_id", "session_id", "sessions", "session_id"},
    {"events", "event_id", "execution_id", "executions", "execution_id"},
    {"events", "event_id", "configuration_id", "configurations", "configuration_id"},
    {"parameters", "event_id", "event_id", "events", "event_id"},
};

std::string Dangling(const Reference& reference) {
  const std::string column = std::string("x.") + reference.column;
  return std::string("SELECT DISTINCT x.") + reference.key + " FROM " + reference.table + " x LEFT JOIN " +
         reference.target + " y ON y." + reference.targetKey + " = " + column + " WHERE " + column +
         " IS NOT NULL AND y." + reference.targetKey + " IS NULL";
}

}  // namespace

std::vector<std::string> PostgreSqlSchemaFindings(const Store& store) {
  std::vector<std::string> findings;
  std::map<std::string, std::set<int>> missing = RecordedTables(store);
  const std::string triggers =
      "SELECT c.relname, t.tgname, t.tgtype, t.tgenabled IN ('O', 'A') AND t.tgqual IS NULL AND "
      "CAST(t.tgattr AS text) = '', p.proname, p.prosrc FROM pg_trigger t "
      "JOIN pg_class c ON c.oid = t.tgrelid JOIN pg_proc p ON p.oid = t.tgfoid WHERE NOT (t.tgisinternal AND "
      "p.proname LIKE 'RI_FKey%' AND p.pronamespace = CAST('pg_catalog' AS regnamespace)) AND ";
  for (Rows rows(store, triggers + here); rows.Next();) {
    const auto table = missing.find(std::string(rows.Text(0)));
    const std::string name = "trigger " + std::string(rows.Text(1)) + " on " + std::string(rows.Text(0));
    if (table == missing.end()) {
      continue;
    }
    if (rows.Text(4) != "refuse_change") {
      findings.push_back(name + " is none of TS's, and may change what is recorded");
    } else if (rows.Integer(3) == 0 || rows.Text(5) != Local::refusal) {
      findings.push_back(name + " is not what it should be");
      table->second.erase(static_cast<int>(rows.Integer(2)));
    } else {
      table->second.erase(static_cast<int>(rows.Integer(2)));
    }
  }
  const std::string rules =
      "SELECT c.relname, r.rulename FROM pg_rewrite r JOIN pg_class c ON c.oid = r.ev_class WHERE ";
  for (Rows rows(store, rules + here); rows.Next();) {
    if (missing.count(std::string(rows.Text(0))) > 0) {
      findings.push_back("rule " + std::string(rows.Text(1)) + " on " + std::string(rows.Text(0)) +
                         " is none of TS's, and may change what is recorded");
    }
  }
  for (const auto& [table, kinds] : missing) {
    for (const int kind : kinds) {
      findings.push_back("the trigger that refuses to " + std::string(kind == noTruncate ? "empty" : "change rows of") +
                         " table " + table + " is missing");
    }
  }
  return findings;
}

std::vector<std::string> PostgreSqlDamageFindings(const Store& store) {
  std::vector<std::string> findings;
  for (const Reference& reference : references) {
    for (Rows rows(store, Dangling(reference)); rows.Next();) {
      findings.push_back("row " + std::string(rows.Text(0)) + " of " + reference.table + " refers to a row of " +
                         reference.target + " that is not there");
    }
  }
  return findings;
}
