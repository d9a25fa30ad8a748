#include "store/record/Unsealed.h"

#include "store/reading/KnownStores.h"
#include "store/reading/Notes.h"
#include "store/reading/Reader.h"
#include "store/reading/Unfinished.h"
#include "store/schema/Tables.h"

#include <array>
#include <vector>

namespace Velora::Store {

namespace {

/// The kinds whose records belong to runs and have numbers of their own.
constexpr std::array ofRuns = {Executions, Statuses, Events, Notes};

/// The condition of keys of the tables in which a store has its keys together: all but those of events.
std::string Together(const std::string& key, long long origin) {
  const KeyRange keys = KeysOf(origin).front();
  return (origin == thisStore ? "" : key + " > " + std::to_string(keys.after) + " AND ") + key +
         " <= " + std::to_string(keys.upTo);
}

/// A query for runs e, which RunStates reads.
std::string Question(const Reader& store, long long origin, const std::string& which) {
  const bool canBeSealed = store.SchemaVersion() >= TableNamed("seals").since;
  return "SELECT e.execution_id, e.guid, e.node, e.started_at, " + UnfinishedCondition(store, "e.execution_id") + ", " +
         (canBeSealed ? "(SELECT up_to FROM seals WHERE run = e.guid AND " + Together("seal_id", origin) +
                            " ORDER BY seal_id DESC LIMIT 1)"
                      : "NULL") +
         " FROM executions e WHERE +e.parent_id IS NULL AND e.execution_id IN (" + which + ") ORDER BY e.execution_id";
}

/// A query for the roots of all runs that a store can have to seal.
std::string All(const Reader& store, long long origin) {
  return "SELECT execution_id FROM executions WHERE +parent_id IS NULL AND " + Together("execution_id", origin) +
         " UNION SELECT root_id FROM " + NotesIn(store) + " n WHERE " + Together("note_id", origin);
}

/// A query for the roots of the runs behind the keys of executions, statuses, notes and events at ?1, ?3, ?5, ?7 and
/// ?9, each up to the following one, and of those that are not finished.
std::string Since(const Reader& store, long long origin) {
  return "SELECT root_id FROM executions WHERE execution_id > ?1 AND execution_id <= ?2 UNION "
         "SELECT x.root_id FROM statuses s CROSS JOIN executions x WHERE x.execution_id = s.execution_id "
         "AND s.status_id > ?3 AND s.status_id <= ?4 UNION SELECT n.root_id FROM " +
         NotesIn(store) +
         " n WHERE n.note_id > ?5 AND n.note_id <= ?6 UNION "
         "SELECT x.root_id FROM events v CROSS JOIN executions x WHERE x.execution_id = v.execution_id "
         "AND v.event_id > ?7 AND v.event_id <= ?8 UNION "
         "SELECT x.root_id FROM events v CROSS JOIN executions x WHERE x.execution_id = v.execution_id "
         "AND v.event_id > ?9 AND v.event_id <= ?10 UNION " +
         UnfinishedRuns(store) + " AND " + Together("x.root_id", origin);
}

/// A range without keys.
constexpr KeyRange noKeys = {0, 0};

/// The keys behind those of a number, in the tables in which a store has its keys together.
KeyRange Behind(long long origin, long long number) {
  const std::vector<KeyRange> ranges = KeysOf(origin, number);
  return ranges.front().after < firstMonthlyKey - 1 ? ranges.front() : noKeys;
}

/// The number of rows of a kind that a store has up to a number.
long long CountUpTo(const Reader& store, long long origin, Kind kind, long long number) {
  const std::string& key = TableOf(kind).Key();
  Rows rows(store, "SELECT COUNT(*) FROM " + TableOf(kind).name + " WHERE " + key + " > ?1 AND " + key + " <= ?2");
  long long count = 0;
  for (const auto& [after, last] : KeysOf(origin, none[kind], number)) {
    rows.Ask(after, last).Next();
    count += rows.Integer(0);
  }
  return count;
}

/// Whether a store has a number of rows of a kind up to one of its numbers. Hosts leave no gaps in a file, so it is
/// mostly enough to look at the lowest key, and the rows need not be counted.
bool Has(const Reader& store, long long origin, Kind kind, long long count, long long upTo) {
  const KeyRange keys = KeysOf(origin).front();
  const std::string& key = TableOf(kind).Key();
  Rows rows(store,
            "SELECT MIN(" + key + ") FROM " + TableOf(kind).name + " WHERE " + key + " > ?1 AND " + key + " <= ?2");
  const bool any = rows.Ask(keys.after, keys.upTo).Next() && !rows.IsNull(0);
  const long long lowest = rows.Integer(0) - ShiftOf(origin);
  return (any && lowest > 0 && upTo < numbersOfAStore && upTo - lowest + 1 == count) ||
         CountUpTo(store, origin, kind, upTo) == count;
}

}  // namespace

RunStates::RunStates(const Reader& store, long long origin)
    : origin(origin), rows(store, Question(store, origin, All(store, origin))) {}

RunStates::RunStates(const Reader& store, long long origin, const PerKind& since)
    : origin(origin), rows(store, Question(store, origin, Since(store, origin))) {
  std::vector<KeyRange> events = KeysOf(origin, since[Events]);
  events.resize(2, noKeys);
  const KeyRange executions = Behind(origin, since[Executions]), statuses = Behind(origin, since[Statuses]),
                 notes = Behind(origin, since[Notes]);
  rows.Ask(executions.after, executions.upTo, statuses.after, statuses.upTo, notes.after, notes.upTo, events[0].after,
           events[0].upTo, events[1].after, events[1].upTo);
}

bool RunStates::Next() {
  if (!rows.Next()) {
    return false;
  }
  run.root = rows.Integer(0);
  run.guid = rows.Whole(1);
  run.node = rows.Whole(2);
  run.startedAt = rows.Whole(3);
  unfinished = rows.Integer(4) != 0 && StoreOf(run.root) == origin;
  sealed = !rows.IsNull(5);
  sealedUpTo = sealed ? FromText(rows.Text(5)).value_or(none) : none;
  return true;
}

UnsealedRecords::UnsealedRecords(const Reader& store, long long origin)
    : store(store),
      origin(origin),
      ofRun(store,
            "SELECT EXISTS (SELECT 1 FROM executions WHERE root_id = ?1 AND execution_id > ?2) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND s.status_id > ?3) OR "
            "EXISTS (SELECT 1 FROM executions x JOIN events e ON e.execution_id = x.execution_id "
            "WHERE x.root_id = ?1 AND e.event_id > ?4)"),
      notes(store, "SELECT EXISTS (SELECT 1 FROM " + NotesIn(store) +
                       " n WHERE n.root_id = ?1 AND n.note_id > ?2 AND n.note_id <= ?3)"),
      ofNoRun(store,
              "SELECT EXISTS (SELECT 1 FROM events WHERE execution_id IS NULL AND event_id > ?1 AND event_id <= ?2)") {}

bool UnsealedRecords::IsIn(long long root, const PerKind& since) {
  if (StoreOf(root) == origin) {
    const auto behind = [&](Kind kind) { return KeysOf(origin, since[kind]).front().after; };
    ofRun.Ask(root, behind(Executions), behind(Statuses), behind(Events)).Next();
    if (ofRun.Integer(0) != 0) {
      return true;
    }
  }
  const KeyRange keys = Behind(origin, since[Notes]);
  notes.Ask(root, keys.after, keys.upTo).Next();
  return notes.Integer(0) != 0;
}

bool UnsealedRecords::IsInNoRun(const PerKind& since) {
  const PerKind highest = HighestNumbers(store, origin);
  for (const Kind kind : {Schema, Sessions, Registrations, Activities, Versions, Configurations, Stores}) {
    if (highest[kind] > since[kind]) {
      return true;
    }
  }
  for (const auto& [after, last] : KeysOf(origin, since[Events])) {
    ofNoRun.Ask(after, last).Next();
    if (ofNoRun.Integer(0) != 0) {
      return true;
    }
  }
  return false;
}

bool OnlyLaterRunsHaveMore(const Reader& store, const Chain& chain) {
  const long long origin = chain.origin;
  const PerKind& upTo = chain.upTo;
  PerKind known = chain.counts;
  Rows between(
      store,
      "SELECT (SELECT COUNT(*) FROM executions WHERE root_id = ?1 AND execution_id > ?2 AND execution_id <= ?3), "
      "(SELECT COUNT(*) FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
      "WHERE x.root_id = ?1 AND s.status_id > ?4 AND s.status_id <= ?5), "
      "(SELECT COUNT(*) FROM executions x JOIN events e ON e.execution_id = x.execution_id "
      "WHERE x.root_id = ?1 AND e.event_id > ?6 AND e.event_id <= ?7), "
      "(SELECT COUNT(*) FROM notes WHERE root_id = ?1 AND note_id > ?8 AND note_id <= ?9)");
  for (RunStates runs(store, origin, upTo); runs.Next();) {
    const PerKind& since = runs.SealedUpTo();
    const bool own = StoreOf(runs.Current().root) == origin;
    const auto keys = [&](Kind kind) {
      std::vector<KeyRange> ranges = KeysOf(origin, since[kind], upTo[kind]);
      return ranges.empty() || (!own && kind != Notes) ? noKeys : KeyRange{ranges.front().after, ranges.back().upTo};
    };
    const KeyRange executions = keys(Executions), statuses = keys(Statuses), events = keys(Events), notes = keys(Notes);
    between
        .Ask(runs.Current().root, executions.after, executions.upTo, statuses.after, statuses.upTo, events.after,
             events.upTo, notes.after, notes.upTo)
        .Next();
    for (std::size_t place = 0; place < ofRuns.size(); ++place) {
      known[ofRuns[place]] += between.Integer(static_cast<int>(place));
    }
  }
  Rows ofNoRun(store, "SELECT COUNT(*) FROM events WHERE execution_id IS NULL AND event_id > ?1 AND event_id <= ?2");
  for (const auto& [after, last] : KeysOf(origin, chain.restUpTo[Events], upTo[Events])) {
    ofNoRun.Ask(after, last).Next();
    known[Events] += ofNoRun.Integer(0);
  }
  for (const Kind kind : ofRuns) {
    if (!Has(store, origin, kind, known[kind], upTo[kind])) {
      return false;
    }
  }
  return true;
}

}  // namespace Velora::Store
