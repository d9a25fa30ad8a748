#pragma once

#include "store/reading/Reader.h"
#include "watching/Forwarding.h"
#include "watching/LivingHosts.h"
#include "watching/NewRows.h"
#include "watching/NewestValues.h"
#include "watching/Now.h"
#include "watching/SeenTime.h"
#include "watching/StoreFiles.h"
#include "watching/TrackedRun.h"
#include "watching/Watch.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Looks at one store, again and again, and asks each time what was recorded since. One thread may use it.
class StoreWatch {
 public:
  StoreWatch(const WatchedStore& watched, const std::vector<std::string>& values);

  /// What the store says now. Throws nothing: an error is in the answer.
  StoreNow Look();

 private:
  /// Where a run belongs.
  struct Place {
    std::string instrument, startedAt;
  };
  struct Instrument {
    std::string lastRecordedAt;
    std::optional<long long> newest;  ///< The root of its newest run.
  };
  /// The runs of an instrument that did not finish.
  struct Unfinished {
    std::set<std::pair<std::string, long long>> runs;  ///< When each was started, and its root.
    long long running = 0;                             ///< How many of them are running.
  };

  bool CanHaveChanged() const;
  void Read();
  void Begin(const Heads& heads);
  void TakeNew(const NewRows& rows);
  void ReadInstruments(const Heads& now);
  std::map<std::string, std::string> NewestEvents(const Heads& now);
  void ReadForwarding();
  const std::string& InstrumentOf(long long session);
  const Place& PlaceOf(long long root);
  void Show();
  void TakeState(long long root, const Store::KnownState& state);
  void TakeStates();
  void ForgetStates();
  long long* CountOf(Store::RunState state);
  void ShowRuns();
  std::shared_ptr<const RunNow> Track(long long root);
  void Forget();
  void ShowError(const std::string& error);

  const WatchedStore& watched;
  StoreFiles files;
  std::unique_ptr<Store::Reader> reader;
  std::optional<Heads> heads;  // of the last look; nothing before the first, and after an error
  LivingHosts hosts;
  RecordedSince recorded;
  NewestValues values;
  std::map<std::string, Instrument> instruments;
  std::map<long long, std::string> instrumentOf;  // of sessions
  std::map<long long, Place> places;              // of the roots of runs that did not finish, and of the newest
  std::map<long long, Store::KnownState> states;  // of the runs that did not finish, by their roots
  std::map<std::string, Unfinished> unfinished;   // by instrument
  struct {
    long long running = 0, stopped = 0, notKnown = 0;
  } counts;                                  // of the states
  std::map<long long, TrackedRun> tracked;   // the runs that are shown, by their roots
  std::map<std::string, SeenTime> lastSeen;  // of the records of instruments; also of a state that is begun anew
  std::map<long long, SeenTime> lastSeenOf;  // of runs, by their roots
  SeenTime waitingSeen;
  std::optional<Store::Database> facility;
  Clock::time_point askedForwarding{};
  std::map<std::string, ForwarderNow> forwarders;
  int failures = 0;  // in sequence
  StoreNow shown;
};

}  // namespace Velora::Ts
