#include "soundness/SqliteSoundness.h"

#include "copying/StoredTables.h"
#include "output/Progress.h"
#include "reading/Rows.h"
#include "reading/SqliteSource.h"
#include "reading/Store.h"
#include "soundness/ExpectedSchema.h"

#include <map>
#include <set>
#include <utility>

namespace Velora::Ts {

namespace {

// What ANALYZE adds, which steers how questions are answered, and no more.
const std::set<std::pair<std::string, std::string>> statistics = {
    {"table sqlite_stat1", "sqlite_stat1: CREATE TABLE sqlite_stat1(tbl,idx,stat)"},
    {"table sqlite_stat4", "sqlite_stat4: CREATE TABLE sqlite_stat4(tbl,idx,neq,nlt,ndlt,sample)"},
};

constexpr int stepsBetweenShowing = 1'000'000;

/// Shows that SQLite is at work on a question that has no rows to count.
class Working {
 public:
  explicit Working(const Store& store) : handle(static_cast<const SqliteSource&>(store.Reading()).Handle()) {
    const auto show = [](void* shown) {
      static_cast<Progress*>(shown)->Add(1);
      return 0;
    };
    sqlite3_progress_handler(handle, stepsBetweenShowing, show, &progress);
  }
  Working(const Working&) = delete;
  Working& operator=(const Working&) = delete;
  ~Working() { sqlite3_progress_handler(handle, 0, nullptr, nullptr); }

 private:
  sqlite3* const handle;
  Progress progress{"Checking the file, million steps", 0};
};

}  // namespace

std::vector<std::string> SqliteSchemaFindings(const Store& store) {
  std::vector<std::string> findings;
  std::map<std::string, std::string> missing = ExpectedSchema(store.SchemaVersion());
  for (Rows rows(store, schemaObjects); rows.Next();) {
    const std::string name(rows.Text(0));
    const auto expected = missing.find(name);
    if (expected == missing.end()) {
      if (statistics.count({name, std::string(rows.Text(1))}) == 0) {
        findings.push_back(name + " is none of TS's, and may change what is recorded");
      }
      continue;
    }
    if (expected->second != rows.Text(1)) {
      findings.push_back(name + " is not what it should be");
    }
    missing.erase(expected);
  }
  for (const auto& [name, sql] : missing) {
    findings.push_back(name + " is missing");
  }
  return findings;
}

std::vector<std::string> SqliteDamageFindings(const Store& store) {
  const Working working(store);
  std::vector<std::string> findings;
  for (Rows rows(store, "PRAGMA integrity_check"); rows.Next();) {
    if (rows.Text(0) != "ok") {
      findings.push_back("the file is damaged: " + std::string(rows.Text(0)));
    }
  }
  for (Rows rows(store, "PRAGMA foreign_key_check"); rows.Next();) {
    findings.push_back("row " + std::string(rows.Text(1)) + " of " + std::string(rows.Text(0)) +
                       " refers to a row of " + std::string(rows.Text(2)) + " that is not there");
  }
  return findings;
}

std::string SqliteWrongTypes(const StoredTable& table) {
  static const char* const names[] = {"integer", "text", "real"};
  std::string cases;
  for (const StoredColumn& column : table.columns) {
    cases += " WHEN " + column.name + " IS NOT NULL AND typeof(" + column.name + ") <> '" +
             names[static_cast<int>(column.type)] + "' THEN '" + column.name + "'";
  }
  return "SELECT " + table.Key() + ", CASE" + cases + " END AS wrong FROM " + table.name + " WHERE wrong IS NOT NULL";
}

}  // namespace Velora::Ts
