#include "asking/ListedRuns.h"

#include "store/reading/Executions.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "store/values/StoredText.h"

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

// Of conditions on events, all runs are read until enough fulfil them. One run more than usual shows that there are
// more.
long long MostRead(const RunFilter& filter, const std::vector<Condition>& conditions) {
  if (!conditions.empty()) {
    return std::numeric_limits<long long>::max();
  }
  return filter.limit == 0 ? ListedRuns::usualLimit + 1 : filter.limit;
}

}  // namespace

ListedRuns::ListedRuns(const Store::Reader& store, const RunFilter& filter, const std::vector<Condition>& conditions)
    : rows(QueryExecutions(store, ConditionOf(store, filter),
                           {UnfinishedCondition(store, "e.execution_id"), runsWithSameLetters})),
      where(store, conditions),
      limit(filter.limit),
      left(limit == 0 ? usualLimit : limit) {
  rows.Ask(filter.since, ToStoredText(filter.instrument), ToStoredText(filter.activity), MostRead(filter, conditions),
           ToStoredText(filter.node), filter.until);
}

bool ListedRuns::Next() {
  while (left > 0 && rows.Next()) {
    if (where.Has(rows.Integer(0))) {
      --left;
      any = true;
      return true;
    }
  }
  return false;
}

}  // namespace Velora::Ts
