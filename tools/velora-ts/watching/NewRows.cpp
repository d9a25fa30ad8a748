#include "watching/NewRows.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::chrono::seconds betweenAsking{5};
constexpr long long newestAtBegin = 1000;  // among which some can become visible later

/// Questions for root, session, number of rows, highest key and newest time.
constexpr const char* newEvents =
    "SELECT x.root_id, v.session_id, COUNT(*), MAX(v.event_id), MAX(substr(v.at, 1, 40)) FROM events v "
    "LEFT JOIN executions x ON x.execution_id = v.execution_id WHERE v.event_id > ?1 AND v.event_id <= ?2 "
    "GROUP BY x.root_id, v.session_id";
constexpr const char* newStatuses =
    "SELECT x.root_id, s.session_id, COUNT(*), MAX(s.status_id), MAX(substr(s.at, 1, 40)) FROM statuses s "
    "JOIN executions x ON x.execution_id = s.execution_id WHERE s.status_id > ?1 AND s.status_id <= ?2 "
    "GROUP BY x.root_id, s.session_id";
constexpr const char* newExecutions =
    "SELECT root_id, session_id, COUNT(*), MAX(execution_id), MAX(substr(started_at, 1, 40)) FROM executions "
    "WHERE execution_id > ?1 AND execution_id <= ?2 GROUP BY root_id, session_id";

void Add(const Store::Reader& store, const char* question, long long after, long long upTo, NewRows& rows) {
  if (after >= upTo) {
    return;
  }
  Rows found(store, question);
  for (found.Ask(after, upTo); found.Next();) {
    const std::string at(found.Text(4));
    std::string& ofSession = rows.sessions[found.Integer(1)];
    ofSession = std::max(ofSession, at);
    if (found.IsNull(0)) {
      continue;
    }
    NewOfRun& run = rows.runs[found.Integer(0)];
    run.lastAt = std::max(run.lastAt, at);
    if (question == newEvents) {
      run.events += found.Integer(2);
      run.lastEvent = std::max(run.lastEvent, found.Integer(3));
    } else {
      run.moved = true;
      run.isNew = run.isNew || (question == newExecutions && found.Integer(0) > after && found.Integer(0) <= upTo);
    }
  }
}

/// What one of the stores in a store recorded after one state and up to another.
NewRows RowsBetween(const Store::Reader& store, const Head& from, const Head& to) {
  NewRows rows;
  // The keys of other stores are between those of a server's own events and zero.
  const long long after = to.events < firstMonthlyKey ? from.events : std::max(from.events, firstMonthlyKey - 1);
  Add(store, newEvents, after, to.events, rows);
  Add(store, newStatuses, from.statuses, to.statuses, rows);
  Add(store, newExecutions, from.executions, to.executions, rows);
  if (after < to.events) {
    rows.events.push_back({after, to.events});
  }
  return rows;
}

void Join(NewRows& rows, const NewRows& more) {
  for (const auto& [root, found] : more.runs) {
    NewOfRun& run = rows.runs[root];
    run.events += found.events;
    run.lastEvent = std::max(run.lastEvent, found.lastEvent);
    run.lastAt = std::max(run.lastAt, found.lastAt);
    run.moved = run.moved || found.moved;
    run.isNew = run.isNew || found.isNew;
  }
  for (const auto& [session, at] : more.sessions) {
    std::string& newest = rows.sessions[session];
    newest = std::max(newest, at);
  }
  rows.events.insert(rows.events.end(), more.events.begin(), more.events.end());
}

/// A state with some rows less.
Head Below(Head head) {
  for (long long* const key : {&head.sessions, &head.executions, &head.statuses, &head.events}) {
    *key -= std::min(*key % numbersOfAStore, newestAtBegin);
  }
  return head;
}

}  // namespace

void RecordedSince::Begin(const Store::Reader& store, const Heads& heads) {
  *this = {};
  seen = heads;
  floor = middle = heads.stores.front();
  if (store.Where().kind == Database::Kind::PostgreSql) {
    floor = Below(middle);
    for (const auto& [root, run] : RowsBetween(store, floor, middle).runs) {
      older[root] = run.events;
    }
  }
  asked = std::chrono::steady_clock::now();
}

bool RecordedSince::IsDueAgain(const Store::Reader& store, const Heads& heads) const {
  return store.Where().kind == Database::Kind::PostgreSql && std::chrono::steady_clock::now() - asked > betweenAsking &&
         floor != heads.stores.front();
}

NewRows RecordedSince::In(const Store::Reader& store, const Heads& heads) {
  NewRows rows;
  for (std::size_t at = 1; at < heads.stores.size(); ++at) {
    Join(rows, RowsBetween(store, seen.stores[at], heads.stores[at]));
  }
  const Head& own = heads.stores.front();
  if (IsDueAgain(store, heads)) {
    AskAgain(store, own, rows);
  } else {
    const NewRows found = RowsBetween(store, seen.stores.front(), own);
    for (const auto& [root, run] : found.runs) {
      recent[root] += run.events;
    }
    Join(rows, found);
  }
  seen = heads;
  return rows;
}

// Each row is asked for at least once more after it could be seen for the first time, and at most 10 seconds long.
void RecordedSince::AskAgain(const Store::Reader& store, const Head& now, NewRows& rows) {
  NewRows toMiddle = RowsBetween(store, floor, middle);
  NewRows toNow = RowsBetween(store, middle, now);
  Counts counted;
  for (auto& [root, run] : toMiddle.runs) {
    run.events -= older[root];
  }
  for (auto& [root, run] : toNow.runs) {
    counted[root] = run.events;
    run.events -= recent[root];
  }
  Join(rows, toMiddle);
  Join(rows, toNow);
  floor = std::exchange(middle, now);
  older = std::exchange(counted, {});
  recent.clear();
  asked = std::chrono::steady_clock::now();
}

}  // namespace Velora::Ts
