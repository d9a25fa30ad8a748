#pragma once

#include "store/reading/Hosts.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

// What stores say at one moment. Texts and times are as stored; texts are cut, and so is what can be many, so that
// whatever was recorded has room. Two that compare equal look the same to a reader.

inline constexpr std::size_t longestTextNow = 200;      ///< In characters.
inline constexpr std::size_t mostParametersNow = 20;    ///< Of an event.
inline constexpr std::size_t mostRunsNow = 8;           ///< Of an instrument.
inline constexpr std::size_t mostStepsNow = 10;         ///< Of a path: the innermost.
inline constexpr std::size_t mostInstrumentsNow = 200;  ///< Of a store.

struct ParameterNow {
  std::string name, kind;
  std::string value;  ///< As JSON, in the form of docs/record-format.md.
  bool operator==(const ParameterNow&) const = default;
};

struct EventNow {
  std::string name, at;
  std::vector<ParameterNow> parameters;
  bool operator==(const EventNow&) const = default;
};

/// An execution on the path from a run to where it is.
struct StepNow {
  long long execution = 0;  ///< Its key.
  std::string activity, node, startedAt;
  std::optional<long long> number;  ///< 3 for the third of that activity below its parent; nothing for the run itself.
  bool operator==(const StepNow&) const = default;
};

struct RunNow {
  long long root = 0;  ///< The key of its topmost execution.
  std::string guid, node, activity, version, startedAt;
  Store::RunState state = Store::RunState::Finished;
  std::string why;             ///< Why it is not known; empty otherwise.
  std::string lastRecordedAt;  ///< Not later than that was seen: the clock of a host can be ahead.
  long long mark = 0;          ///< Grows when something of the run was recorded.
  std::vector<StepNow> path;   ///< From the run to what is running, or was when it stopped; empty if it is finished.
  std::optional<EventNow> lastEvent;
  long long events = 0;
  std::optional<double> eventsPerMinute;  ///< Over the last minute; nothing if it was not watched for long enough.
  bool operator==(const RunNow&) const = default;
};

/// What the store of a facility knows of the forwarder of an instrument.
struct ForwarderNow {
  std::string heardAt;
  long long waiting = 0;     ///< How many rows waited at the instrument then.
  std::string waitingSince;  ///< The time of the oldest of them; empty if there was none.
  bool isConnected = false;
  bool isSilent = false;  ///< Whether somebody should look after it.
  bool operator==(const ForwarderNow&) const = default;
};

struct InstrumentNow {
  std::string name;
  /// That of a run that is running if there is one, else of the newest run. Finished means that it is idle: what
  /// stopped before the newest run is history.
  Store::RunState state = Store::RunState::Finished;
  int hostsAlive = 0;                               ///< The sessions whose hosts live, as far as that can be seen here.
  std::string lastRecordedAt;                       ///< As that of a run; empty if nothing was recorded.
  std::vector<std::shared_ptr<const RunNow>> runs;  ///< Those that did not finish, the newest first.
  long long moreRuns = 0;                           ///< How many more did not finish.
  std::shared_ptr<const RunNow> newest;             ///< Whatever its state; null if there is none.
  std::optional<ForwarderNow> forwarder;            ///< In the store of a facility.
};
bool operator==(const InstrumentNow& one, const InstrumentNow& other);

/// The newest number of a parameter that was asked for.
struct ValueNow {
  std::string instrument, parameter, at;
  double value = 0;  ///< Can be infinite, or not a number.
  std::string run;   ///< The guid of its run; empty outside every run.
};
bool operator==(const ValueNow& one, const ValueNow& other);

/// How far the store of an instrument was forwarded to a facility.
struct ForwardingNow {
  std::string to;                    ///< The name of the facility's database.
  std::optional<long long> waiting;  ///< How many rows wait; nothing if that is not known.
  std::string since;                 ///< The time of the oldest of them; empty if none waits.
  enum class State { Working, NotAtWork, Failing } state = State::NotAtWork;
  std::string error;  ///< Why it fails.
  bool operator==(const ForwardingNow&) const = default;
};

struct StoreNow {
  int number = 1;                                  ///< Of the ServedStore.
  std::string name;                                ///< Of its database, without a password.
  std::string error = "it was not looked at yet";  ///< Why it cannot be read; empty if it can.
  bool isAwaited = false;                          ///< Whether it was not looked at yet.
  std::optional<ForwardingNow> forwarding;
  std::vector<InstrumentNow> instruments;  ///< By their names.
  long long moreInstruments = 0;
  long long running = 0, stopped = 0, notKnown = 0;  ///< How many runs are in these states, also those not listed.
  std::vector<ValueNow> values;
  bool operator==(const StoreNow&) const = default;
};

/// The newest run of an instrument that has stopped and after which no other began; null if there is none. Another host
/// of the instrument can still record.
const RunNow* NewStopOf(const InstrumentNow& instrument);

/// What all watched stores say.
struct Now {
  long long sequence = 0;  ///< Grows by one with each change. 0 before the first look at a store.
  std::vector<std::shared_ptr<const StoreNow>> stores;
};

}  // namespace Velora::Ts
