#include "store/reading/Runs.h"

#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/StoredText.h"

#include "store/Error.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace Velora::Store {

namespace {

const std::string columns = "SELECT execution_id, guid, node, started_at FROM executions WHERE parent_id IS NULL AND ";

std::vector<Run> All(Rows& rows) {
  std::vector<Run> runs;
  while (rows.Next()) {
    const auto text = [&rows](int column) { return std::string(rows.Whole(column)); };
    runs.push_back({rows.Integer(0), text(1), text(2), text(3)});
  }
  return runs;
}

// The plus sign and the empty text keep SQLite from the indexes of parents and times, so that it takes that of guids.
std::vector<Run> RunsWithGuid(const Reader& store, const std::string& beginning, long long most) {
  Rows rows(store,
            "SELECT execution_id, guid, node, started_at FROM executions WHERE +parent_id IS NULL AND guid >= ?1 "
            "AND guid < ?2 ORDER BY started_at || '', execution_id LIMIT ?3");
  return All(rows.Ask(beginning, beginning + 'g', most));
}

// Within a store by the key and not by the time, because the clock of a host can be set back. The last ones of several
// stores are compared by their times.
std::vector<Run> RecordedLast(const Reader& store) {
  Rows rows(store,
            "SELECT e.execution_id, e.guid, e.node, e.started_at FROM " + StoresIn(store) +
                " stores CROSS JOIN executions e WHERE e.execution_id = (SELECT r.root_id FROM executions r CROSS JOIN "
                "executions x WHERE r.root_id >= stores.store_id AND r.root_id < stores.store_id + " +
                std::to_string(numbersOfAStore - 1) +
                " AND x.execution_id = r.root_id AND +x.parent_id IS NULL ORDER BY r.root_id DESC LIMIT 1) "
                "ORDER BY e.started_at DESC, e.execution_id DESC LIMIT 1");
  return All(rows);
}

}  // namespace

std::vector<Run> RunsBetween(const Reader& store, const std::string& from, const std::string& before) {
  Rows rows(store, columns + "started_at >= ?1 AND started_at < ?2 ORDER BY started_at, execution_id");
  return All(rows.Ask(from, before));
}

std::vector<Run> RunsNamed(const Reader& store, const std::string& name, long long most) {
  if (name == "last") {
    return RecordedLast(store);
  }
  std::string guid = name;
  std::transform(guid.begin(), guid.end(), guid.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  std::vector<Run> runs = RunsWithGuid(store, guid, most);
  if (runs.empty() || guid.size() < shortGuid) {  // so few letters can also be a node
    Rows rows(store, columns + "node = ?1 ORDER BY started_at || '', execution_id LIMIT ?2");
    for (Run& run : All(rows.Ask(ToStoredText(name), most))) {
      if (std::none_of(runs.begin(), runs.end(), [&](const Run& found) { return found.root == run.root; })) {
        runs.push_back(std::move(run));
      }
    }
  }
  return runs;
}

Run RunOf(const Reader& store, long long root) {
  Rows rows(store, "SELECT execution_id, guid, node, started_at FROM executions WHERE execution_id = ?1");
  std::vector<Run> runs = All(rows.Ask(root));
  if (runs.empty()) {
    throw Error("there is no execution " + std::to_string(root));
  }
  return std::move(runs.front());
}

const char* const runsWithSameLetters =
    "(SELECT COUNT(*) FROM executions g WHERE +g.parent_id IS NULL AND g.guid >= substr(e.guid, 1, 8) "
    "AND g.guid < substr(e.guid, 1, 8) || 'g')";

std::string ShortGuid(const Reader& store, const std::string& guid) {
  std::size_t length = shortGuid;
  while (length < guid.size() && RunsWithGuid(store, guid.substr(0, length), 2).size() > 1) {
    ++length;
  }
  return guid.substr(0, length);
}

// Looks up the newest row of each execution, and reads no others: a run can have a million events.
LastRecords::LastRecords(const Reader& store)
    : rows(store,
           "SELECT MAX((SELECT at FROM statuses WHERE execution_id = x.execution_id ORDER BY status_id DESC LIMIT 1)), "
           "MAX((SELECT at FROM events WHERE execution_id = x.execution_id AND event_id > ?2 AND event_id <= ?3 "
           "ORDER BY event_id DESC LIMIT 1)) FROM executions x WHERE x.root_id = ?1") {}

std::string LastRecords::Of(const Run& run) {
  const auto [after, upTo] = KeysBeside(run.root);
  rows.Ask(run.root, after, upTo).Next();
  return std::string(std::max(rows.Text(0), rows.Text(1)));
}

std::string LastRecorded(const Reader& store, const Run& run) { return LastRecords(store).Of(run); }

}  // namespace Velora::Store
