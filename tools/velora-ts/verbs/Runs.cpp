#include "store/reading/Runs.h"
#include "output/NoteWords.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/asking/FulfillingRuns.h"
#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"
#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Unfinished.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"
#include "verbs/AbsentNames.h"
#include "verbs/StoreVerb.h"
#include "verbs/TimeArgument.h"
#include "verbs/WhereArgument.h"

#include <limits>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Which runs to list. An empty text selects all.
struct RunFilter {
  std::string since, until, instrument, activity, node;
  bool unfinished = false;  ///< Only runs that are not finished.
  long long limit = 0;      ///< The highest number of runs; 0 if none was stated.
};

/// The highest number of runs if none was stated.
constexpr long long usualLimit = 50;

/// The runs to list, newest first.
class ListedRuns {
 public:
  ListedRuns(Rows rows, FulfillingRuns where, long long limit)
      : rows(std::move(rows)), where(std::move(where)), left(limit) {}

  /// Goes to the next run. @return whether there is one.
  bool Next() {
    while (left > 0 && rows.Next()) {
      if (where.Has(rows.Integer(0))) {
        --left;
        any = true;
        return true;
      }
    }
    return false;
  }
  const Rows& Row() const { return rows; }
  /// Whether the limit ended the list.
  bool IsCut() { return left == 0 && rows.Next(); }
  /// The names in conditions without which there is no run to list.
  std::set<std::string> Missing() const { return any ? std::set<std::string>() : where.NotMet(); }

 private:
  Rows rows;
  FulfillingRuns where;
  long long left;
  bool any = false;
};

/// The number of runs of an instrument up to which all of them are read to find the newest.
constexpr long long fewRuns = 1000;

constexpr const char* runsOfInstrument =
    "SELECT r.execution_id FROM sessions s CROSS JOIN executions r WHERE s.instrument = ?2 AND r.session_id = "
    "s.session_id AND r.parent_id IS NULL";

/// Whether an instrument has so few runs that it is faster to read them all than to look for them among all runs.
bool HasFewRuns(const Store::Reader& store, const std::string& instrument) {
  Rows rows(store, std::string("SELECT COUNT(*) FROM (") + runsOfInstrument + " LIMIT ?1) AS first");
  rows.Ask(fewRuns, ToStoredText(instrument)).Next();
  return rows.Integer(0) < fewRuns;
}

/// A query for the few runs among which those to list are; empty if they can be any.
std::string Candidates(const Store::Reader& store, const RunFilter& filter) {
  if (!filter.node.empty()) {
    return "SELECT execution_id FROM executions WHERE node = ?5 AND parent_id IS NULL";
  }
  if (filter.unfinished && NotesRunning(store)) {
    return UnfinishedRuns(store);
  }
  return !filter.instrument.empty() && HasFewRuns(store, filter.instrument) ? runsOfInstrument : "";
}

// Reads few candidates and sorts them, or reads along the index of parents and times until there are enough runs. A
// plus sign or an empty text keeps a column from an index. PostgreSQL uses that index for the order only if ORDER BY
// names all its columns.
std::string ConditionOf(const Store::Reader& store, const RunFilter& filter) {
  const std::string candidates = Candidates(store, filter);
  std::string condition = candidates.empty() ? "WHERE e.parent_id IS NULL "
                                             : "WHERE e.execution_id IN (" + candidates + ") AND +e.parent_id IS NULL ";
  condition +=
      "AND e.started_at >= ?1 AND (?2 = '' OR n.instrument = ?2) "
      "AND (?3 = '' OR v.name = ?3 OR a.name = ?3) AND (?5 = '' OR e.node = ?5) ";
  condition += filter.until.empty() ? "AND ?6 = '' " : "AND e.started_at < ?6 ";
  if (filter.unfinished && (!filter.node.empty() || !NotesRunning(store))) {
    condition += "AND " + UnfinishedCondition(store, "e.execution_id") + ' ';
  }
  return condition +
         (candidates.empty() ? "ORDER BY e.parent_id DESC, e.started_at DESC" : "ORDER BY e.started_at || '' DESC") +
         ", e.execution_id DESC LIMIT ?4";
}

bool IsUnfinished(const Rows& rows) { return rows.Integer(executionColumns) != 0; }

/// What is said of a run: whether it still runs, and the time of its last record. If it finished, that is its end.
struct Standing {
  KnownState known;
  std::string lastRecorded;
};

class Standings {
 public:
  explicit Standings(const Store::Reader& store) : hosts(store), last(store) {}

  Standing Of(const Execution& root, bool unfinished) {
    const Run run{root.key, root.guid, root.node, root.startedAt};
    return unfinished ? Standing{hosts.Of(run), last.Of(run)} : Standing{{}, root.statusAt};
  }

 private:
  Hosts hosts;
  LastRecords last;
};

void WriteTable(const Store::Reader& store, ListedRuns& runs) {
  std::vector<TextTable::Column> columns{{.title = "run", .whole = true},
                                         {.title = "started", .times = TextTable::Times::Dated},
                                         {.title = "until", .times = TextTable::Times::Later},
                                         {.title = "duration", .number = true},
                                         {.title = "state", .whole = true},
                                         {.title = "instrument", .yielding = true},
                                         {.title = "activity", .yielding = true},
                                         {.title = "node", .whole = true}};
  const bool hasNotes = HasNotes(store);
  if (hasNotes) {
    columns.push_back({.title = "note", .yielding = true, .below = true});
  }
  Rows notes = QueryNotes(store);
  Standings standings(store);
  TextTable table(columns);
  while (runs.Next()) {
    const Rows& rows = runs.Row();
    const Execution root = ExecutionAt(rows);
    const bool unfinished = IsUnfinished(rows);
    const auto [known, lastRecorded] = standings.Of(root, unfinished);
    const bool unique = rows.Integer(executionColumns + 1) == 1;
    std::vector<TextTable::Cell> row{
        {Printable(unique ? root.guid.substr(0, shortGuid) : ShortGuid(store, root.guid))},
        {LocalTime(root.startedAt, false)},
        {LocalTime(lastRecorded, false)},
        {unfinished ? Ago(lastRecorded) : DurationInWords(root, false)},
        {unfinished ? UnfinishedInWords(known.state) : StateInWords(root), IsAlarming(known.state)},
        {Shown(root.instrument)},
        {ActivityInWords(root)},
        {Shown(root.node)}};
    if (hasNotes) {
      row.push_back({NotesInShort(notes.Ask(root.key))});
    }
    table.Add(row);
  }
  table.Finish();
}

void WriteJson(const Store::Reader& store, ListedRuns& runs) {
  Rows notes = QueryNotes(store);
  Standings standings(store);
  const char* separator = "[\n";
  while (runs.Next()) {
    const Rows& rows = runs.Row();
    const Execution root = ExecutionAt(rows);
    const bool unfinished = IsUnfinished(rows);
    const auto [known, lastRecorded] = standings.Of(root, unfinished);
    WriteData(separator + ('{' + JsonMembers(root)) + ",\"unfinished\":" + (unfinished ? "true," : "false,") +
              JsonState(known, lastRecorded) + ",\"notes\":" + NotesAsJson(notes.Ask(root.key)) + '}');
    separator = ",\n";
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

class RunsVerb : public StoreVerb {
 public:
  explicit RunsVerb(Options& options) : StoreVerb(options) {
    options.AddText("--instrument", filter.instrument, "Only runs of this instrument", "INSTRUMENT");
    options.AddText("--since", filter.since, "Only runs that started at this time or later: " VELORA_TIME_FORMS,
                    "TIME");
    options.AddText("--until", filter.until, "Only runs that started before this time", "TIME");
    options.AddRepeatedText("--where", where,
                            "Only runs with an event that fulfils this condition, such as 'Dose > 40', as for events",
                            "CONDITION");
    options.AddText("--activity", filter.activity, "Only runs of this activity or activity version", "ACTIVITY");
    options.AddText("--node", filter.node, "Only runs of this node", "NODE");
    options.AddFlag("--unfinished", filter.unfinished, "Only runs of which an execution did not finish");
    options.AddCount("--limit", filter.limit, "The highest number of runs. Default: 50");
    options.AddFlag("--json", json, "Write a JSON array, with times in UTC");
  }

  ExitCode Execute() override {
    const std::vector<Condition> conditions = WhereArgument(where);
    const std::string since = filter.since.empty() ? "" : TimeArgument(filter.since);
    const std::string until = filter.until.empty() ? "" : TimeArgument(filter.until);
    const bool usual = filter.limit == 0;
    const long long limit = usual ? usualLimit : filter.limit;
    const long long read = usual ? limit + 1 : limit;  // one more shows that the list is cut
    const Reader store(Database());
    Rows rows = QueryExecutions(store, ConditionOf(store, filter),
                                {UnfinishedCondition(store, "e.execution_id"), runsWithSameLetters});
    rows.Ask(since, ToStoredText(filter.instrument), ToStoredText(filter.activity),
             conditions.empty() ? read : std::numeric_limits<long long>::max(), ToStoredText(filter.node), until);
    ListedRuns runs(std::move(rows), FulfillingRuns(store, conditions), limit);
    json ? WriteJson(store, runs) : WriteTable(store, runs);
    FlushOut();
    if (usual && runs.IsCut()) {
      Complain("only the newest " + std::to_string(limit) + " are listed; --limit changes that");
    }
    store.ExpectUntouched();
    ExitCode result = Done;
    for (const std::string& name : runs.Missing()) {
      result = ExplainAbsence(store, Named::Parameter, name) == Found ? Found : result;
    }
    return result;
  }

 private:
  RunFilter filter;
  std::vector<std::string> where;
  bool json = false;
};

}  // namespace

extern const Registration registeredRuns = {"runs",
                                            "Lists runs, the newest first. A run that did not finish is running or "
                                            "STOPPED, or UNFINISHED if that is not known.",
                                            "runs --since 2026-11-24 --unfinished", &Make<RunsVerb>};

}  // namespace Velora::Ts
