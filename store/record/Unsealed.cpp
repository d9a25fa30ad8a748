#include "store/record/Unsealed.h"

#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Unfinished.h"
#include "store/schema/Tables.h"

#include <array>

namespace Velora::Store {

namespace {

/// The kinds whose records belong to runs and have numbers of their own.
constexpr std::array ofRuns = {Executions, Statuses, Events, Notes};

/// A query for runs e, which RunStates reads.
std::string Question(const Reader& store, const std::string& which) {
  const bool canBeSealed = store.SchemaVersion() >= TableNamed("seals").since;
  return "SELECT e.execution_id, e.guid, e.node, e.started_at, " + UnfinishedCondition(store, "e.execution_id") + ", " +
         (canBeSealed ? "(SELECT up_to FROM seals WHERE run = e.guid ORDER BY seal_id DESC LIMIT 1)" : "NULL") +
         " FROM executions e WHERE " + which + " ORDER BY e.execution_id";
}

/// A condition for the runs behind the numbers of executions, statuses, events and notes at ?1 to ?4. The plus sign
/// keeps the index of parents out.
std::string Since(const Reader& store) {
  return "+e.parent_id IS NULL AND e.execution_id IN ("
         "SELECT root_id FROM executions WHERE execution_id > ?1 UNION "
         "SELECT x.root_id FROM statuses s CROSS JOIN executions x WHERE x.execution_id = s.execution_id "
         "AND s.status_id > ?2 UNION "
         "SELECT x.root_id FROM events v CROSS JOIN executions x WHERE x.execution_id = v.execution_id "
         "AND v.event_id > ?3 UNION SELECT n.root_id FROM " +
         NotesIn(store) + " n WHERE n.note_id > ?4 UNION " + UnfinishedRuns(store) + ')';
}

/// The number of rows of a kind up to a number.
long long CountUpTo(const Reader& store, Kind kind, long long number) {
  const std::string& table = TableOf(kind).name;
  Rows rows(store, "SELECT (SELECT COUNT(*) FROM " + table + ") - (SELECT COUNT(*) FROM " + table + " WHERE " +
                       TableOf(kind).Key() + " > ?1)");
  rows.Ask(number).Next();
  return rows.Integer(0);
}

/// Whether a table has a number of rows up to one of its keys. Hosts leave no gaps in a file, so it is mostly enough to
/// look at the lowest key, and the rows need not be counted.
bool Has(const Reader& store, Kind kind, long long count, long long upTo) {
  Rows rows(store, "SELECT MIN(" + TableOf(kind).Key() + ") FROM " + TableOf(kind).name);
  const bool any = rows.Next() && !rows.IsNull(0) && rows.Integer(0) <= upTo;
  return (any && rows.Integer(0) > 0 && upTo - rows.Integer(0) + 1 == count) || CountUpTo(store, kind, upTo) == count;
}

}  // namespace

RunStates::RunStates(const Reader& store) : rows(store, Question(store, "e.parent_id IS NULL")) {}

RunStates::RunStates(const Reader& store, const Numbers& since) : rows(store, Question(store, Since(store))) {
  rows.Ask(since[Executions], since[Statuses], since[Events], since[Notes]);
}

bool RunStates::Next() {
  if (!rows.Next()) {
    return false;
  }
  run.root = rows.Integer(0);
  run.guid = rows.Whole(1);
  run.node = rows.Whole(2);
  run.startedAt = rows.Whole(3);
  unfinished = rows.Integer(4) != 0;
  sealed = !rows.IsNull(5);
  sealedUpTo = sealed ? FromText(rows.Text(5)).value_or(none) : none;
  return true;
}

UnsealedRecords::UnsealedRecords(const Reader& store)
    : store(store),
      ofRun(store,
            "SELECT EXISTS (SELECT 1 FROM executions WHERE root_id = ?1 AND execution_id > ?2) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND s.status_id > ?3) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN events e ON e.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND e.event_id > ?4) OR "
            "EXISTS (SELECT 1 FROM " +
                NotesIn(store) + " n WHERE n.root_id = ?1 AND n.note_id > ?5)"),
      ofNoRun(store, "SELECT EXISTS (SELECT 1 FROM events WHERE execution_id IS NULL AND event_id > ?1)") {}

bool UnsealedRecords::IsIn(long long root, const Numbers& since) {
  ofRun.Ask(root, since[Executions], since[Statuses], since[Events], since[Notes]).Next();
  return ofRun.Integer(0) != 0;
}

bool UnsealedRecords::IsInNoRun(const Numbers& since) {
  const Numbers highest = HighestNumbers(store);
  for (const Kind kind : {Schema, Sessions, Registrations, Activities, Versions, Configurations, Stores}) {
    if (highest[kind] > since[kind]) {
      return true;
    }
  }
  ofNoRun.Ask(since[Events]).Next();
  return ofNoRun.Integer(0) != 0;
}

bool OnlyLaterRunsHaveMore(const Reader& store, const Chain& chain) {
  const Numbers& upTo = chain.upTo;
  Numbers known = chain.counts;
  Rows between(
      store,
      "SELECT (SELECT COUNT(*) FROM executions WHERE root_id = ?1 AND execution_id > ?2 AND execution_id <= ?3), "
      "(SELECT COUNT(*) FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
      "WHERE x.root_id = ?1 AND s.status_id > ?4 AND s.status_id <= ?5), "
      "(SELECT COUNT(*) FROM executions x JOIN events e ON e.execution_id = x.execution_id "
      "WHERE x.root_id = ?1 AND e.event_id > ?6 AND e.event_id <= ?7), "
      "(SELECT COUNT(*) FROM notes WHERE root_id = ?1 AND note_id > ?8 AND note_id <= ?9)");
  for (RunStates runs(store, upTo); runs.Next();) {
    const Numbers& since = runs.SealedUpTo();
    between
        .Ask(runs.Current().root, since[Executions], upTo[Executions], since[Statuses], upTo[Statuses], since[Events],
             upTo[Events], since[Notes], upTo[Notes])
        .Next();
    for (std::size_t place = 0; place < ofRuns.size(); ++place) {
      known[ofRuns[place]] += between.Integer(static_cast<int>(place));
    }
  }
  Rows ofNoRun(store, "SELECT COUNT(*) FROM events WHERE execution_id IS NULL AND event_id > ?1 AND event_id <= ?2");
  ofNoRun.Ask(chain.restUpTo[Events], upTo[Events]).Next();
  known[Events] += ofNoRun.Integer(0);
  for (const Kind kind : ofRuns) {
    if (!Has(store, kind, known[kind], upTo[kind])) {
      return false;
    }
  }
  return true;
}

}  // namespace Velora::Store
