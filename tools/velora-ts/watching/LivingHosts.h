#pragma once

#include "store/reading/Hosts.h"
#include "watching/Heads.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Which runs did not finish, and whether the hosts of a store live. A host that is killed changes no row, so its lock
/// is asked for at each look.
class LivingHosts {
 public:
  /// Reads what did not finish, and asks for the locks.
  /// @param again whether to read it although the heads are those of the look before.
  /// @return whether a host has ended since then. What it recorded at last can be missing in this state: then the store
  /// must be looked at again.
  bool Look(const Store::Reader& store, const Heads& heads, bool again);

  /// The roots of the runs whose states can have changed since the last call of this.
  std::set<long long> TakeChanged() { return std::exchange(changed, {}); }
  /// Takes the state of each run that did not finish for a changed one.
  void ChangeAll();
  /// The state of a run.
  Store::KnownState Of(long long root) const;
  /// The sessions whose hosts live.
  std::vector<long long> Sessions() const;

 private:
  using Executions = std::map<long long, long long>;  // the session that set its newest status, by the key of each

  void ReadAll(const Store::Reader& store, const Heads& heads);
  void ReadNew(const Store::Reader& store, const Heads& heads, bool again);
  void Take(long long root, long long execution, long long session, bool isRunning);
  void WatchSessions(const Store::Reader& store, const Heads& heads);
  bool AskForLocks(const Store::Reader& store);
  bool Is(long long session, const Store::KnownState& state) const;
  void ChangeRunsOf(const std::set<long long>& sessions);
  Store::KnownState OfSession(long long session) const;

  Heads seen;
  long long older = 0, old = 0;                   // statuses: on a server, one can become visible after later ones
  bool notes = false;                             // whether the store notes what did not finish
  std::map<long long, Executions> unfinished;     // by the roots of their runs
  std::set<long long> changed;                    // roots
  std::set<long long> watched;                    // sessions whose hosts can live
  std::set<long long> ended;                      // sessions that were watched and whose hosts have ended
  std::map<long long, Store::KnownState> states;  // at the last look, without these
};

}  // namespace Velora::Ts
