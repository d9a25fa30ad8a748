#include "store/soundness/SqliteSoundness.h"

#include "store/database/SqliteConnection.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/Tables.h"
#include "store/soundness/ExpectedSchema.h"

#include <map>
#include <set>
#include <utility>

namespace Velora::Store {

namespace {

// The tables that ANALYZE adds. They influence only the plans of queries.
const std::set<std::pair<std::string, std::string>> statistics = {
    {"table sqlite_stat1", "sqlite_stat1: CREATE TABLE sqlite_stat1(tbl,idx,stat)"},
    {"table sqlite_stat4", "sqlite_stat4: CREATE TABLE sqlite_stat4(tbl,idx,neq,nlt,ndlt,sample)"},
};

/// As SQLite calls what a value is stored as.
const char* TypeOf(const Column& column) {
  return column.type == Type::Text ? "text" : column.type == Type::Number ? "real" : "integer";
}

constexpr int stepsBetweenShowing = 1'000'000;

/// Tells now and then that SQLite is at work on a question that has no rows to count.
class Working {
 public:
  Working(sqlite3* handle, const std::function<void()>& tell) : handle(handle), tell(tell) {
    const auto show = [](void* working) {
      static_cast<Working*>(working)->tell();
      return 0;
    };
    sqlite3_progress_handler(handle, stepsBetweenShowing, show, this);
  }
  Working(const Working&) = delete;
  Working& operator=(const Working&) = delete;
  ~Working() { sqlite3_progress_handler(handle, 0, nullptr, nullptr); }

 private:
  sqlite3* const handle;
  const std::function<void()>& tell;
};

}  // namespace

std::vector<std::string> SqliteSchemaFindings(const Reader& store) {
  std::vector<std::string> findings;
  std::map<std::string, std::string> missing = ExpectedSchema(store.SchemaVersion());
  for (Rows rows(store, schemaObjects); rows.Next();) {
    const std::string name(rows.Text(0));
    const auto expected = missing.find(name);
    if (expected == missing.end()) {
      if (statistics.count({name, std::string(rows.Text(1))}) == 0) {
        findings.push_back(name + " does not belong to a TS store and may change what is recorded");
      }
      continue;
    }
    if (expected->second != rows.Text(1)) {
      findings.push_back(name + " is not as in a new store");
    }
    missing.erase(expected);
  }
  for (const auto& [name, sql] : missing) {
    findings.push_back(name + " is missing");
  }
  return findings;
}

std::vector<std::string> SqliteDamageFindings(const Reader& store, const std::function<void()>& working) {
  const Working telling(static_cast<SqliteConnection&>(store.Sql()).Handle(), working);
  std::vector<std::string> findings;
  for (Rows rows(store, "PRAGMA integrity_check"); rows.Next();) {
    if (rows.Text(0) != "ok") {
      findings.push_back("the file is damaged: " + std::string(rows.Text(0)));
    }
  }
  const auto dangling = DanglingReferences(store.Sql());
  findings.insert(findings.end(), dangling.begin(), dangling.end());
  return findings;
}

std::vector<std::string> DanglingReferences(Connection& store) {
  std::vector<std::string> findings;
  for (Rows rows(store, "PRAGMA foreign_key_check"); rows.Next();) {
    findings.push_back("row " + std::string(rows.Text(1)) + " of " + std::string(rows.Text(0)) +
                       " refers to a row of " + std::string(rows.Text(2)) + " that does not exist");
  }
  return findings;
}

std::string SqliteWrongTypes(const Table& table) {
  std::string cases;
  for (const Column& column : table.columns) {
    cases += " WHEN " + column.name + " IS NOT NULL AND typeof(" + column.name + ") <> '" + TypeOf(column) +
             "' THEN '" + column.name + "'";
  }
  return "SELECT " + table.Key() + ", CASE" + cases + " END AS wrong FROM " + table.name + " WHERE wrong IS NOT NULL";
}

}  // namespace Velora::Store
