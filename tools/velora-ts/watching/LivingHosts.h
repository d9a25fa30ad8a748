#pragma once

#include "store/reading/Hosts.h"
#include "watching/Heads.h"

#include <map>
#include <set>
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

  /// The states of the runs that did not finish, by the keys of their roots.
  std::map<long long, Store::KnownState> Runs() const;
  /// The sessions whose hosts live.
  std::vector<long long> Sessions() const;

 private:
  void Read(const Store::Reader& store);
  void WatchSessions(const Store::Reader& store, const Heads& heads);
  bool AskForLocks(const Store::Reader& store);
  Store::KnownState Of(long long session) const;

  Heads seen;
  std::vector<Store::UnfinishedExecution> unfinished;
  std::set<long long> watched;                    // sessions whose hosts can live
  std::set<long long> ended;                      // those of `unfinished` whose hosts have ended
  std::map<long long, Store::KnownState> states;  // at the last look, without these
};

}  // namespace Velora::Ts
