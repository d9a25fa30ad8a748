#include "store/reading/Runs.h"
#include "output/Output.h"
#include "output/Terminal.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/Executions.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"
#include "verbs/StoreVerb.h"
#include "verbs/TimeArgument.h"

namespace Velora::Ts {

using namespace Store;

namespace {

/// Which runs to list; an empty text leaves it open.
struct RunFilter {
  std::string since, instrument, activity;
  bool unfinished = false;  ///< Only those that did not finish.
  long long limit = 50;
};

// Along the index by parent and time, until there are enough. PostgreSQL takes the order from the index only where all
// of its columns are named.
std::string ConditionOf(const RunFilter& filter) {
  std::string condition =
      "WHERE e.parent_id IS NULL AND e.started_at >= ?1 AND (?2 = '' OR n.instrument = ?2) "
      "AND (?3 = '' OR v.name = ?3 OR a.name = ?3) ";
  if (filter.unfinished) {
    condition += std::string("AND EXISTS (") + runningOfRun + "e.execution_id) ";
  }
  return condition + "ORDER BY e.parent_id DESC, e.started_at DESC, e.execution_id DESC LIMIT ?4";
}

Run RunOf(const Execution& root) { return {root.key, root.guid, root.node, root.startedAt}; }

void WriteTable(const Store::Reader& store, Rows& rows) {
  TextTable table({{"run"},
                   {"started"},
                   {"duration", true},
                   {"state"},
                   {"instrument", false, true},
                   {"activity", false, true},
                   {"node", false, true}});
  while (rows.Next()) {
    const Execution root = ExecutionAt(rows);
    const bool unfinished = IsUnfinished(store, RunOf(root));
    table.Add({{Printable(ShortGuid(store, root.guid))},
               {LocalTime(root.startedAt, false)},
               {unfinished ? "" : DurationInWords(root, false)},
               {unfinished ? unfinishedInWords : StateInWords(root), unfinished},
               {Shown(root.instrument)},
               {ActivityInWords(root)},
               {Shown(root.node)}});
  }
  table.Finish();
}

void WriteJson(const Store::Reader& store, Rows& rows) {
  const char* separator = "[\n";
  while (rows.Next()) {
    const Execution root = ExecutionAt(rows);
    WriteData(separator + ('{' + JsonMembers(root)) +
              (IsUnfinished(store, RunOf(root)) ? ",\"unfinished\":true}" : ",\"unfinished\":false}"));
    separator = ",\n";
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

class RunsVerb : public StoreVerb {
 public:
  explicit RunsVerb(Options& options) : StoreVerb(options) {
    options.AddText("--instrument", filter.instrument, "Only those of this instrument");
    options.AddText("--since", filter.since, "Only those that started then or later; UTC");
    options.AddText("--activity", filter.activity, "Only those of this activity, or version of one");
    options.AddFlag("--unfinished", filter.unfinished, "Only those of which something did not finish");
    options.AddCount("--limit", filter.limit, "How many at most. Default: 50");
    options.AddFlag("--json", json, "As a JSON array; times in UTC");
  }

  ExitCode Execute() override {
    const std::string since = filter.since.empty() ? "" : TimeArgument(filter.since);
    const Reader store(Database());
    Rows rows = QueryExecutions(store, ConditionOf(filter));
    rows.Ask(since, ToStoredText(filter.instrument), ToStoredText(filter.activity), filter.limit);
    json ? WriteJson(store, rows) : WriteTable(store, rows);
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

 private:
  RunFilter filter;
  bool json = false;
};

}  // namespace

extern const Registration registeredRuns = {"runs",
                                            "Lists runs, the newest first. What did not finish is marked UNFINISHED.",
                                            "runs --since 2026-11-24 --unfinished", &Make<RunsVerb>};

}  // namespace Velora::Ts
