#include "output/EventLines.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/EventRows.h"
#include "store/reading/ExecutionPath.h"
#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"
#include "verbs/DigitsOption.h"
#include "verbs/LogOptions.h"
#include "verbs/RunForms.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <chrono>
#include <thread>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::chrono::milliseconds betweenLooks(200);

enum class State { Running, Stopped, Finished, WithoutStatus };

// Reads the executions below a run only when its root has ended. TS stores an execution together with its first status,
// so a run without a status comes from another program and may never get one.
State StateOf(const Store::Reader& store, const Run& run, std::string& whyNotKnown) {
  Rows rows = QueryExecutions(store, "WHERE e.execution_id = ?1");
  if (!rows.Ask(run.root).Next()) {
    return State::Finished;
  }
  const Execution root = ExecutionAt(rows);
  if (!root.status) {
    return State::WithoutStatus;
  }
  if (!IsRunning(root) && !IsUnfinished(store, run)) {
    return State::Finished;
  }
  const KnownState known = Hosts(store).Of(run);
  whyNotKnown = known.why;
  return known.state == RunState::Stopped ? State::Stopped : State::Running;
}

// While a host makes the store, it cannot be read yet.
std::vector<Run> NewestRun(const Database& database, bool waiting) {
  try {
    return RunsNamed(Reader(database), "last");
  } catch (const NoStoreYet&) {
    return {};
  } catch (const Error&) {
    if (waiting) {
      return {};
    }
    throw;
  }
}

/// The run to follow. Without a name the newest; if there is none yet, waits for the first.
std::optional<Run> RunToFollow(const Database& database, const std::string& name) {
  if (!name.empty()) {
    return TheRunNamed(Reader(database), name);
  }
  std::vector<Run> runs = NewestRun(database, false);
  if (runs.empty()) {
    Complain("waiting for a run");
  }
  while (runs.empty()) {
    std::this_thread::sleep_for(betweenLooks);
    runs = NewestRun(database, true);
  }
  return runs.front();
}

/// Writes the events of a run at the first look, and at each later look those that are new.
class Follower {
 public:
  /// @param log null for none.
  Follower(Run run, int digits, LogFile::LogFiles* log) : run(std::move(run)), lines(digits) {
    if (log != nullptr) {
      beside.emplace(*log);
    }
  }

  State Look(const Store::Reader& store) {
    EventRows events = first ? EventsOfRun(store, run.root) : EventsOfRunSince(store, run.root, later);
    ExecutionPaths paths(store);
    lines.WriteAll(events, paths, beside);
    FlushOut();
    first = false;
    later = LaterEvents(store, run.root);
    std::string why;
    const State state = StateOf(store, run, why);
    if (!why.empty() && why != whyNotKnown) {
      Complain("whether its host still runs is not known: " + why);
    }
    whyNotKnown = why;
    return state;
  }

 private:
  const Run run;
  bool first = true;
  KeyRange later;
  std::string whyNotKnown;  // whether the host of the run lives
  EventLines lines;
  std::optional<LinesBeside<LogFile::LogFiles>> beside;
};

class TailVerb : public StoreVerb {
 public:
  explicit TailVerb(Options& options) : StoreVerb(options), digits(options), logs(options) {
    options.AddText("RUN", name, "The run to follow: " VELORA_RUN_FORMS);
  }

  ExitCode Execute() override {
    const int shown = digits.Value();
    const Store::Database database = Database();
    const std::optional<Run> run = RunToFollow(database, name);
    if (!run) {
      return Found;
    }
    Complain("following " + InWords(*run) + " until it is finished; Ctrl-C stops");
    std::optional<LogFile::LogFiles> log;
    if (logs.IsGiven()) {
      const Reader store(database);
      std::string why;
      log.emplace(StateOf(store, *run, why) == State::Running ? logs.Following(*run) : logs.LinesOf(store, *run));
    }
    Follower follower(*run, shown, log ? &*log : nullptr);
    State before = State::Running;
    State state = follower.Look(Reader(database));
    // What the host wrote last can have come after the look at which it was found to have ended.
    while (state == State::Running || (state == State::Stopped && before != State::Stopped)) {
      std::this_thread::sleep_for(betweenLooks);
      before = state;
      state = follower.Look(Reader(database));
    }
    if (state == State::Stopped) {
      const std::string last = LastRecorded(Reader(database), *run);
      Complain("this run has stopped: its host has ended; last recorded " + LocalTime(last, true) + ", " + Ago(last));
      return Found;
    }
    if (state == State::WithoutStatus) {
      Complain("this run has no status, so tail cannot know whether it is finished");
      return Found;
    }
    return Done;
  }

 private:
  std::string name;
  DigitsOption digits;
  const LogOptions logs;
};

}  // namespace

extern const Registration registeredTail = {"tail",
                                            "Writes the events of a run, one a line, while they are recorded, until "
                                            "the run is finished, or has stopped. Without RUN it follows "
                                            "the run recorded last, and waits for one if there is none.",
                                            "tail", &Make<TailVerb>};

}  // namespace Velora::Ts
