#include "Runs.h"

#include "Json.h"
#include "Rows.h"
#include "Store.h"
#include "StoredText.h"

#include <algorithm>
#include <cctype>

namespace {

const std::string columns = "SELECT execution_id, guid, node, started_at FROM executions WHERE parent_id IS NULL AND ";

std::vector<Run> All(Rows& rows) {
  std::vector<Run> runs;
  while (rows.Next()) {
    runs.push_back({rows.Integer(0), std::string(rows.Text(1)), std::string(rows.Text(2)), std::string(rows.Text(3))});
  }
  return runs;
}

}  // namespace

std::string InWords(const Run& run) {
  std::string words = "run " + run.guid + ' ';
  AppendText(words, run.node);  // on one line, whatever is in it
  return words + " of " + run.startedAt;
}

std::vector<Run> RunsBetween(const Store& store, const std::string& from, const std::string& before) {
  Rows rows(store, columns + "started_at >= ?1 AND started_at < ?2 ORDER BY execution_id");
  return All(rows.Ask(from, before));
}

std::vector<Run> AllRuns(const Store& store) {
  Rows rows(store, columns + "true ORDER BY execution_id");
  return All(rows);
}

std::vector<Run> RunsNamed(const Store& store, const std::string& name) {
  if (name == "last") {
    Rows rows(store, columns + "true ORDER BY execution_id DESC LIMIT 1");
    return All(rows);
  }
  std::string guid = name;
  std::transform(guid.begin(), guid.end(), guid.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  Rows rows(store, columns + "((guid >= ?1 AND guid < ?1 || 'g') OR node = ?2) ORDER BY execution_id");
  return All(rows.Ask(guid, Quor::TolvaServices::Local::ToStoredText(name)));
}

bool IsUnfinished(const Store& store, const Run& run) {
  Rows rows(store,
            "SELECT EXISTS (SELECT 1 FROM executions x WHERE root_id = ?1 AND 4 = (SELECT code FROM statuses "
            "WHERE execution_id = x.execution_id ORDER BY status_id DESC LIMIT 1))");
  return rows.Ask(run.root).Next() && rows.Integer(0) != 0;
}
