#include "watching/LivingHosts.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/StoreNumbers.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr const char* newestSessions = "50";

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
    *this = {};
  }
  if (isNew || again || HasMoved(heads, seen)) {
    WatchSessions(store, heads);
    Read(store);
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

void LivingHosts::Read(const Store::Reader& store) {
  unfinished = UnfinishedIn(store);
  std::set<long long> stillEnded;
  for (const UnfinishedExecution& one : unfinished) {
    (ended.count(one.session) > 0 ? stillEnded : watched).insert(one.session);
  }
  ended = std::move(stillEnded);
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
  for (const auto& [session, known] : StatesOf(store, asked)) {
    if (known.state == RunState::Stopped) {
      watched.erase(session);
      states.erase(session);
      ended.insert(session);
      any = true;
    } else {
      states[session] = known;
    }
  }
  return any;
}

std::map<long long, KnownState> LivingHosts::Runs() const {
  std::map<long long, KnownState> runs;
  for (const UnfinishedExecution& one : unfinished) {
    const KnownState known = Of(one.session);
    const auto [run, isFirst] = runs.emplace(one.root, known);
    if (!isFirst && (known.state == RunState::Running ||
                     (known.state == RunState::NotKnown && run->second.state == RunState::Stopped))) {
      run->second = known;
    }
  }
  return runs;
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

KnownState LivingHosts::Of(long long session) const {
  const auto known = states.find(session);
  return known == states.end() ? KnownState{RunState::Stopped} : known->second;
}

}  // namespace Velora::Ts
