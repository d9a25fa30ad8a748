#include "asking/ListedRuns.h"

#include "store/reading/Executions.h"
#include "store/reading/Notes.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "store/values/StoredText.h"

#include <algorithm>
#include <limits>

namespace Velora::Ts {

using namespace Store;

namespace {

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

bool IsOneOf(const std::string& state, const std::vector<std::string>& states) {
  return std::find(states.begin(), states.end(), state) != states.end();
}

/// Whether only runs are to list that are not finished.
bool OnlyUnfinished(const RunFilter& filter) { return !filter.state.empty() && filter.state != "finished"; }
/// Whether the hosts say which of them these are.
bool HostsDecide(const RunFilter& filter) { return IsOneOf(filter.state, {"running", "stopped", "unknown"}); }

/// A query for the few runs among which those to list are; empty if they can be any.
std::string Candidates(const Store::Reader& store, const RunFilter& filter) {
  if (!filter.node.empty()) {
    return "SELECT execution_id FROM executions WHERE node = ?5 AND parent_id IS NULL";
  }
  if (OnlyUnfinished(filter) && NotesRunning(store)) {
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
  condition += filter.after ? "AND e.started_at <= ?7 AND (e.started_at < ?7 OR e.execution_id < ?8) "
                            : "AND ?7 = '' AND ?8 = 0 ";
  const std::string unfinished = UnfinishedCondition(store, "e.execution_id");
  if (OnlyUnfinished(filter) && (!filter.node.empty() || !NotesRunning(store))) {
    condition += "AND " + unfinished + ' ';
  }
  if (filter.state == "finished") {
    condition += "AND NOT " + unfinished + ' ';
  }
  return condition +
         (candidates.empty() ? "ORDER BY e.parent_id DESC, e.started_at DESC" : "ORDER BY e.started_at || '' DESC") +
         ", e.execution_id DESC LIMIT ?4";
}

/// A column: whether a run has a text. It is no condition, so that the time that it takes can be limited.
std::string HasText(const Store::Reader& store) {
  const std::string text = "LOWER(CAST(?9 AS TEXT))", end = " || '%' ESCAPE '!'";
  const std::string within = ") LIKE '%' || " + text + end;
  std::string any = "LOWER(e.guid) LIKE " + text + end;
  for (const char* const column : {"e.node", "e.description", "v.name", "a.name"}) {
    any += " OR LOWER(" + std::string(column) + within;
  }
  return "CASE WHEN " + any + " OR EXISTS (SELECT 1 FROM " + NotesIn(store) +
         " t WHERE t.root_id = e.execution_id AND LOWER(t.text" + within + ") THEN 1 ELSE 0 END";
}

enum More { Unfinished = executionColumns, SameLetters, TextIsThere };

std::vector<std::string> MoreColumns(const Store::Reader& store, const RunFilter& filter) {
  return {UnfinishedCondition(store, "e.execution_id"), runsWithSameLetters,
          filter.text.empty() ? "CASE WHEN ?9 = '' THEN 1 ELSE 0 END" : HasText(store)};
}

/// A text in which no letter has a meaning for LIKE.
std::string ForLike(const std::string& text) {
  std::string literally;
  for (const char letter : ToStoredText(text)) {
    literally += (letter == '!' || letter == '%' || letter == '_' ? "!" : "") + std::string(1, letter);
  }
  return literally;
}

// Of what is not in the query, all runs are read until enough have it. One run more than usual shows that there are
// more.
long long MostRead(const RunFilter& filter, const std::vector<Condition>& conditions) {
  if (!conditions.empty() || !filter.text.empty() || HostsDecide(filter)) {
    return std::numeric_limits<long long>::max();
  }
  return filter.limit == 0 ? ListedRuns::usualLimit + 1 : filter.limit;
}

}  // namespace

const std::vector<std::string> RunFilter::states = {"running", "stopped", "unknown", "unfinished", "finished"};

ListedRuns::ListedRuns(const Store::Reader& store, const RunFilter& filter, const std::vector<Condition>& conditions)
    : rows(QueryExecutions(store, ConditionOf(store, filter), MoreColumns(store, filter), filter.longest)),
      where(store, conditions),
      hosts(store),
      last(store),
      filter(filter),
      limit(filter.limit),
      left(limit == 0 ? usualLimit : limit) {
  const RunPlace after = filter.after.value_or(RunPlace());
  rows.Ask(filter.since, ToStoredText(filter.instrument), ToStoredText(filter.activity), MostRead(filter, conditions),
           ToStoredText(filter.node), filter.until, after.startedAt, after.key, ForLike(filter.text));
}

bool ListedRuns::Next() {
  while (left > 0 && !interrupted && rows.Next()) {
    if (Fits()) {
      --left;
      any = true;
      return true;
    }
    interrupted = Clock::now() > end;
  }
  return false;
}

bool ListedRuns::Fits() {
  return rows.Integer(TextIsThere) != 0 && (!HostsDecide(filter) || NameOf(Run().known.state) == filter.state) &&
         where.Has(rows.Integer(0));
}

ListedRun ListedRuns::Run() {
  ListedRun listed{ExecutionAt(rows), rows.Integer(Unfinished) != 0, {}, ""};
  const Store::Run run{listed.root.key, listed.root.guid, listed.root.node, listed.root.startedAt};
  listed.known = listed.unfinished ? hosts.Of(run) : KnownState();
  listed.lastRecorded = listed.unfinished ? last.Of(run) : listed.root.statusAt;
  return listed;
}

bool ListedRuns::HasUniqueLetters() const { return rows.Integer(SameLetters) == 1; }

RunPlace ListedRuns::Place() const { return {std::string(rows.Text(4)), rows.Integer(0)}; }

}  // namespace Velora::Ts
