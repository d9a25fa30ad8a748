#include "watching/LivingHosts.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Unfinished.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr const char* newestSessions = "50";
constexpr long long newestStatusesAtBegin = 1000;  // statuses, among which some can become visible later
constexpr long long statusRunning = 4;             // a status

/// Whether anything but events was recorded.
bool HasMoved(const Heads& later, const Heads& before) {
  return !std::equal(later.stores.begin(), later.stores.end(), before.stores.begin(), before.stores.end(),
                     [](const Head& one, const Head& other) {
                       return one.sessions == other.sessions && one.executions == other.executions &&
                              one.statuses == other.statuses;
                     });
}

}  // namespace

bool LivingHosts::Look(const Store::Reader& store, const Heads& heads, bool again) {
  const bool isNew = !Follows(heads, seen);
  if (isNew) {
    ChangeAll();
    LivingHosts anew;
    anew.changed = std::move(changed);
    *this = std::move(anew);
  }
  if (isNew || again || HasMoved(heads, seen)) {
    WatchSessions(store, heads);
    if (isNew || notes != NotesRunning(store)) {
      ReadAll(store, heads);
    } else if (notes) {
      ReadNew(store, heads, again);
    }
  }
  seen = heads;
  return store.SchemaVersion() >= SessionLocks().since && AskForLocks(store);
}

void LivingHosts::WatchSessions(const Store::Reader& store, const Heads& heads) {
  const long long after = seen.stores.empty() ? 0 : seen.stores.front().sessions;
  Rows sessions(store, std::string("SELECT session_id FROM sessions WHERE session_id > ?1 AND session_id <= ?2 "
                                   "ORDER BY session_id DESC LIMIT ") +
                           newestSessions);
  for (sessions.Ask(after, heads.stores.front().sessions); sessions.Next();) {
    watched.insert(sessions.Integer(0));
  }
}

void LivingHosts::ReadAll(const Store::Reader& store, const Heads& heads) {
  ChangeAll();
  notes = NotesRunning(store);
  unfinished.clear();
  for (const UnfinishedExecution& one : UnfinishedIn(store)) {
    Take(one.root, one.key, one.session, true);
  }
  old = heads.stores.front().statuses;
  older = std::max(old - newestStatusesAtBegin, 0LL);
}

void LivingHosts::ReadNew(const Store::Reader& store, const Heads& heads, bool again) {
  Rows rows(store,
            "SELECT x.execution_id, x.root_id, s.session_id, s.code FROM (SELECT DISTINCT execution_id FROM statuses "
            "WHERE status_id > ?1 AND status_id <= ?2) n JOIN executions x ON x.execution_id = n.execution_id JOIN "
            "statuses s ON s.status_id = (SELECT status_id FROM statuses WHERE execution_id = x.execution_id ORDER BY "
            "status_id DESC LIMIT 1)");
  for (std::size_t at = 0; at < heads.stores.size(); ++at) {
    const bool isAgain = again && at == 0;
    for (rows.Ask(isAgain ? older : seen.stores[at].statuses, heads.stores[at].statuses); rows.Next();) {
      Take(rows.Integer(1), rows.Integer(0), rows.Integer(2), rows.Integer(3) == statusRunning);
    }
  }
  if (again) {
    older = std::exchange(old, heads.stores.front().statuses);
  }
}

void LivingHosts::Take(long long root, long long execution, long long session, bool isRunning) {
  changed.insert(root);
  if (isRunning) {
    unfinished[root][execution] = session;
    if (ended.count(session) == 0) {
      watched.insert(session);
    }
  } else if (const auto run = unfinished.find(root); run != unfinished.end()) {
    run->second.erase(execution);
    if (run->second.empty()) {
      unfinished.erase(run);
    }
  }
}

void LivingHosts::ChangeAll() {
  for (const auto& [root, executions] : unfinished) {
    changed.insert(root);
  }
}

bool LivingHosts::Is(long long session, const KnownState& state) const {
  const auto known = states.find(session);
  return known != states.end() && known->second.state == state.state && known->second.why == state.why;
}

void LivingHosts::ChangeRunsOf(const std::set<long long>& sessions) {
  for (const auto& [root, executions] : unfinished) {
    if (std::any_of(executions.begin(), executions.end(),
                    [&](const auto& execution) { return sessions.count(execution.second) > 0; })) {
      changed.insert(root);
    }
  }
}

// A session that has ended is not asked for again. Those of other stores never have a lock here.
bool LivingHosts::AskForLocks(const Store::Reader& store) {
  std::set<long long> asked;
  for (const long long session : watched) {
    if (StoreOf(session) == thisStore || states.count(session) == 0) {
      asked.insert(session);
    }
  }
  bool any = false;
  std::set<long long> others;
  for (const auto& [session, known] : StatesOf(store, asked)) {
    if (!Is(session, known)) {
      others.insert(session);
      states[session] = known;
    }
    if (known.state == RunState::Stopped) {
      watched.erase(session);
      states.erase(session);
      ended.insert(session);
      any = true;
    }
  }
  if (!others.empty()) {
    ChangeRunsOf(others);
  }
  return any;
}

KnownState LivingHosts::Of(long long root) const {
  KnownState state;
  const auto run = unfinished.find(root);
  if (run == unfinished.end()) {
    return state;
  }
  for (const auto& [execution, session] : run->second) {
    const KnownState known = OfSession(session);
    if (state.state == RunState::Finished || known.state == RunState::Running ||
        (known.state == RunState::NotKnown && state.state == RunState::Stopped)) {
      state = known;
    }
  }
  return state;
}

std::vector<long long> LivingHosts::Sessions() const {
  std::vector<long long> sessions;
  for (const auto& [session, known] : states) {
    if (known.state == RunState::Running) {
      sessions.push_back(session);
    }
  }
  return sessions;
}

KnownState LivingHosts::OfSession(long long session) const {
  const auto known = states.find(session);
  return known == states.end() ? KnownState{RunState::Stopped} : known->second;
}

}  // namespace Velora::Ts
