#include "watching/AlertConditions.h"

#include "output/Times.h"
#include "output/Words.h"
#include "watching/Now.h"

#include <algorithm>
#include <utility>

namespace Velora::Ts {

using namespace Store;
using Holds = AlertCondition::Holds;

namespace {

Holds HoldsIf(bool isSo) { return isSo ? Holds::Yes : Holds::No; }

/// "run 3f2a9c01 'night 3'"
std::string NameOf(const RunNow& run) {
  constexpr std::size_t enough = 8;  // of a guid
  return "run " + run.guid.substr(0, enough) + " '" + Shown(run.node) + '\'';
}

/// Where a run is: " in 'hole 11'", of the innermost execution.
std::string PlaceOf(const RunNow& run) {
  return run.path.size() < 2 ? "" : " in '" + Shown(run.path.back().node) + '\'';
}

/// The conditions of one store.
class OfStore {
 public:
  OfStore(const StoreNow& store, const WantedAlerts& wanted, Time time, std::vector<AlertCondition>& conditions)
      : store(store), wanted(wanted), time(ToStoredTime(time)), conditions(conditions) {}

  void Add() {
    AddReadable();
    if (!store.error.empty()) {
      return;
    }
    if (wanted.behind) {
      AddBehind();
    }
    for (const InstrumentNow& instrument : store.instruments) {
      AddOf(instrument);
    }
    for (const ExpectedRange& range : wanted.outside) {
      AddOutside(range);
    }
  }

 private:
  AlertCondition& New(AlertKind kind, const std::string& instrument = "") {
    AlertCondition& condition = conditions.emplace_back();
    condition.subject = {kind, store.number, instrument, ""};
    condition.store = store.name;
    return condition;
  }
  static void Name(AlertCondition& condition, const RunNow& run) {
    condition.run = run.guid;
    condition.node = run.node;
  }
  /// Whether a stored time is at least so long ago.
  bool IsPast(const std::string& stored, std::chrono::seconds duration) const {
    const std::optional<double> seconds = SecondsBetween(stored, time);
    return seconds && *seconds >= static_cast<double>(duration.count());
  }

  void AddReadable() {
    AlertCondition& condition = New(AlertKind::Unreadable);
    condition.holds = HoldsIf(!store.error.empty());
    condition.since = time;
    condition.words = "store '" + Shown(store.name) + '\'' +
                      (store.error.empty() ? " can be read again" : " cannot be read: " + store.error);
  }

  void AddBehind() {
    if (const auto& forwarding = store.forwarding) {
      const bool isBehind = IsPast(forwarding->since, *wanted.behind);
      AlertCondition& condition = New(AlertKind::Behind);
      condition.holds = HoldsIf(isBehind);
      condition.hasLasted = true;
      condition.since = forwarding->since;
      condition.words = "forwarding from store '" + Shown(store.name) + "' to '" + Shown(forwarding->to) + "' " +
                        (isBehind ? "is behind: " + Waiting(forwarding->waiting, forwarding->since) +
                                        (forwarding->error.empty() ? "" : "; " + forwarding->error)
                                  : "has caught up");
    }
    for (const InstrumentNow& instrument : store.instruments) {
      if (instrument.forwarder) {
        AddBehind(instrument.name, *instrument.forwarder);
      }
    }
  }
  void AddBehind(const std::string& instrument, const ForwarderNow& forwarder) {
    const bool isSilent = forwarder.isSilent && IsPast(forwarder.heardAt, *wanted.behind);
    const bool isBehind = IsPast(forwarder.waitingSince, *wanted.behind);
    AlertCondition& condition = New(AlertKind::Behind, instrument);
    condition.holds = HoldsIf(isSilent || isBehind);
    condition.hasLasted = true;
    condition.since = isBehind ? forwarder.waitingSince : forwarder.heardAt;
    condition.words = "forwarding from " + Shown(instrument) + ' ' +
                      (isBehind   ? "is behind: " + Waiting(forwarder.waiting, forwarder.waitingSince)
                       : isSilent ? "is silent: its forwarder was last heard at " + LocalTime(forwarder.heardAt, false)
                                  : "has caught up");
  }
  static std::string Waiting(std::optional<long long> rows, const std::string& since) {
    return (rows ? std::to_string(*rows) + " rows wait" : "rows wait") + ", the oldest of " + LocalTime(since, false);
  }

  void AddOf(const InstrumentNow& instrument) {
    if (wanted.stopped) {
      AddStopped(instrument);
    }
    if (wanted.silent) {
      AddSilent(instrument);
    }
  }

  void AddStopped(const InstrumentNow& instrument) {
    AlertCondition& condition = New(AlertKind::Stopped, instrument.name);
    const RunNow* const stopped = NewStopOf(instrument);
    condition.holds =
        stopped == nullptr && instrument.state == RunState::NotKnown ? Holds::NotKnown : HoldsIf(stopped != nullptr);
    condition.words = Shown(instrument.name) + " is no longer stopped";
    if (!instrument.newest) {
      return;
    }
    const RunNow& run = stopped != nullptr ? *stopped : *instrument.newest;
    Name(condition, run);
    condition.since = run.lastRecordedAt;
    if (condition.holds == Holds::Yes) {
      condition.words = Shown(instrument.name) + " has stopped: " + NameOf(run) + PlaceOf(run) + " last recorded at " +
                        LocalTime(run.lastRecordedAt, false);
    } else if (run.state == RunState::Running) {
      condition.words += ": " + NameOf(run) + " is running";
    }
  }

  void AddSilent(const InstrumentNow& instrument) {
    const bool isUnfinished = instrument.state == RunState::Running || instrument.state == RunState::NotKnown;
    AlertCondition& condition = New(AlertKind::Silent, instrument.name);
    condition.holds = HoldsIf(isUnfinished && IsPast(instrument.lastRecordedAt, *wanted.silent));
    condition.hasLasted = true;
    condition.since = instrument.lastRecordedAt;
    condition.words = Shown(instrument.name) + " is no longer silent";
    if (!instrument.runs.empty()) {
      Name(condition, *instrument.runs.front());
    }
    if (condition.holds == Holds::Yes) {
      condition.words =
          Shown(instrument.name) + " has recorded nothing since " + LocalTime(instrument.lastRecordedAt, false) +
          (instrument.runs.empty() ? "" : "; its " + NameOf(*instrument.runs.front()) + " is not finished");
    }
  }

  void AddOutside(const ExpectedRange& range) {
    for (const ValueNow& value : store.values) {
      if (value.parameter == range.parameter) {
        AddOutside(range, value);
      }
    }
  }
  void AddOutside(const ExpectedRange& range, const ValueNow& value) {
    const RunNow* const run = UnfinishedRun(value);
    const bool isOutside = run != nullptr && !range.Contains(value.value);
    const std::string words = NumberInWords(value.value);
    AlertCondition& condition = New(AlertKind::Outside, value.instrument);
    condition.subject.range = range.parameter + '=' + range.words;
    condition.holds = HoldsIf(isOutside);
    condition.run = value.run;
    condition.node = run != nullptr ? run->node : "";
    condition.parameter = value.parameter;
    condition.value = NumberInWords(value.value, allDigits);
    condition.since = value.at;
    const std::string name = Shown(value.parameter) + " of " + Shown(value.instrument);
    condition.words = run == nullptr
                          ? "the run that recorded " + name + " has ended"
                          : name + " is " + words + (isOutside ? "; expected " : ", again in ") + range.words;
  }
  /// The run that recorded a value, if it goes on as far as that is known.
  const RunNow* UnfinishedRun(const ValueNow& value) const {
    const auto instrument = std::find_if(store.instruments.begin(), store.instruments.end(),
                                         [&](const InstrumentNow& one) { return one.name == value.instrument; });
    if (instrument == store.instruments.end()) {
      return nullptr;
    }
    const auto run = std::find_if(instrument->runs.begin(), instrument->runs.end(), [&](const auto& one) {
      return one->guid == value.run && one->state != RunState::Stopped;
    });
    return run != instrument->runs.end() ? run->get() : nullptr;
  }

  const StoreNow& store;
  const WantedAlerts& wanted;
  const std::string time;
  std::vector<AlertCondition>& conditions;
};

}  // namespace

std::vector<AlertCondition> ConditionsOf(const Now& now, const WantedAlerts& wanted, Store::Time time) {
  std::vector<AlertCondition> conditions;
  for (const auto& store : now.stores) {
    if (!store->isAwaited) {
      OfStore(*store, wanted, time, conditions).Add();
    }
  }
  return conditions;
}

}  // namespace Velora::Ts
