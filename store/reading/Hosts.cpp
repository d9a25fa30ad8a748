#include "store/reading/Hosts.h"

#include "store/Error.h"
#include "store/reading/Executions.h"
#include "store/reading/HeldLocks.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/StoreNumbers.h"
#include "store/values/RecordedText.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Velora::Store {

namespace {

KnownState NotKnown(std::string why) { return {RunState::NotKnown, std::move(why)}; }

/// Names the store that recorded a session, by the instrument of that session.
std::string StoreOfSession(const Reader& store, long long session) {
  Rows rows(store, "SELECT instrument FROM sessions WHERE session_id = ?1");
  return "the store of " + (rows.Ask(session).Next() ? Readable(rows.Text(0)) : "another instrument");
}

constexpr const char* earlierStore = "the store had an earlier version, whose hosts hold no locks";

/// @param places an asked query for the places of the session's lock.
KnownState StateOf(long long session, Rows& places, const HeldLocks& locks) {
  const std::string since = locks.where + locks.since;
  int taken = 0;
  int ended = 0;
  bool isHere = false;
  bool isCertain = false;
  while (places.Next()) {
    const std::string_view place = places.Text(0);
    if (place.starts_with(ServerLock::ended)) {
      ++ended;
      continue;
    }
    ++taken;
    isHere = isHere || (!locks.where.empty() && place.starts_with(locks.where));
    isCertain = isCertain || place == since || place.starts_with(since + ServerLock::by);
  }
  if (taken == 0) {
    return NotKnown("its host has an earlier version, or could take no lock");
  }
  const bool canLook = isHere && locks.whyNot.empty();
  const std::optional<bool> held = canLook ? locks.IsHeld(session) : std::nullopt;
  if (held.value_or(false)) {
    return {RunState::Running};
  }
  if (ended == taken || (held && isCertain)) {
    return {RunState::Stopped};
  }
  if (!locks.whyNot.empty()) {
    return NotKnown(locks.whyNot);
  }
  if (!isHere) {
    return NotKnown("its host holds no lock here: the store is a copy, or its locks were removed");
  }
  if (!held) {
    return NotKnown("the system does not tell whether its host holds a lock");
  }
  return NotKnown("the server was restarted or ended connections since its host took a lock");
}

}  // namespace

const char* NameOf(RunState state) {
  switch (state) {
    case RunState::Finished:
      return "finished";
    case RunState::Running:
      return "running";
    case RunState::Stopped:
      return "stopped";
    default:
      return "unknown";
  }
}

std::vector<UnfinishedExecution> UnfinishedIn(const Reader& store) {
  std::vector<UnfinishedExecution> unfinished;
  if (!NotesRunning(store)) {
    return unfinished;
  }
  Rows rows(store,
            "SELECT x.execution_id, x.root_id, s.session_id FROM running CROSS JOIN executions x CROSS JOIN statuses s "
            "WHERE x.execution_id = running.execution_id AND s.status_id = running.status_id AND 4 = (SELECT code FROM "
            "statuses WHERE execution_id = x.execution_id ORDER BY status_id DESC LIMIT 1) ORDER BY x.execution_id");
  while (rows.Next()) {
    unfinished.push_back({rows.Integer(0), rows.Integer(1), rows.Integer(2), {}});
  }
  return unfinished;
}

std::map<long long, KnownState> StatesOf(const Reader& store, const std::set<long long>& sessions) {
  std::map<long long, KnownState> states;
  if (sessions.empty()) {
    return states;
  }
  const auto locks = AskForLocks(store);
  Rows places(store, "SELECT place FROM session_locks WHERE session_id = ?1");
  for (const long long session : sessions) {
    states[session] = StoreOf(session) != thisStore
                          ? NotKnown("recorded in " + StoreOfSession(store, session) + "; its host holds no lock here")
                      : locks->canReadPlaces ? StateOf(session, places.Ask(session), *locks)
                                             : NotKnown(locks->whyNot);
  }
  return states;
}

Hosts::Hosts(const Reader& store) : store(store) {}

KnownState Hosts::Of(const Execution& execution) {
  if (!IsRunning(execution)) {
    return {};
  }
  Look();
  const auto found = unfinished.find(execution.key);
  if (found == unfinished.end()) {
    return NotKnown(earlierStore);
  }
  Confirm({execution.key});
  return found->second.known;
}

KnownState Hosts::Of(const Run& run) {
  Look();
  if (!notes) {
    return IsUnfinished(store, run) ? NotKnown(earlierStore) : KnownState();
  }
  KnownState ofRun;
  for (const UnfinishedExecution& one : UnfinishedOf(run)) {
    const RunState state = one.known.state;
    if (ofRun.state == RunState::Finished || state == RunState::Running ||
        (state == RunState::NotKnown && ofRun.state == RunState::Stopped)) {
      ofRun = one.known;
    }
  }
  return ofRun;
}

std::vector<UnfinishedExecution> Hosts::UnfinishedOf(const Run& run) {
  Look();
  const auto found = ofRuns.find(run.root);
  if (found == ofRuns.end()) {
    return {};
  }
  Confirm(found->second);
  std::vector<UnfinishedExecution> executions;
  for (const long long key : found->second) {
    executions.push_back(unfinished[key]);
  }
  return executions;
}

void Hosts::Look() {
  if (std::exchange(looked, true) || !NotesRunning(store)) {
    return;
  }
  notes = true;
  std::set<long long> sessions;
  for (const UnfinishedExecution& one : UnfinishedIn(store)) {
    unfinished[one.key] = one;
    ofRuns[one.root].push_back(one.key);
    sessions.insert(one.session);
  }
  const std::map<long long, KnownState> states = StatesOf(store, sessions);
  for (auto& [key, one] : unfinished) {
    one.known = states.at(one.session);
  }
}

// A host can have finished its work and ended between the state that the reader has and the question for its lock. What
// it finished was running in that state. So if any of these executions has stopped, a later state is asked, once.
void Hosts::Confirm(const std::vector<long long>& executions) {
  const auto hasStopped = [this](long long key) { return unfinished[key].known.state == RunState::Stopped; };
  if (confirmed || std::none_of(executions.begin(), executions.end(), hasStopped)) {
    return;
  }
  confirmed = true;
  std::set<long long> still;
  for (const UnfinishedExecution& one : UnfinishedIn(Reader(store.Where()))) {
    still.insert(one.key);
  }
  for (auto& [key, one] : unfinished) {
    if (one.known.state == RunState::Stopped && still.count(key) == 0) {
      one.known.state = RunState::Running;
    }
  }
}

}  // namespace Velora::Store
