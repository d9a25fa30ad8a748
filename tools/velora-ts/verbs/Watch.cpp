#include "watching/Watch.h"
#include "asking/DurationArgument.h"
#include "asking/RangeArgument.h"
#include "output/Output.h"
#include "output/Times.h"
#include "store/settings/Settings.h"
#include "store/values/StoredTime.h"
#include "verbs/Verb.h"
#include "watching/AlertCalls.h"
#include "watching/AlertConditions.h"
#include "watching/Alerts.h"

#include <VeloraSystem/EndRequest.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <set>
#include <string>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds betweenLooks = 100ms;
constexpr std::chrono::milliseconds longestEnd = 500ms;

class WatchVerb : public Verb {
 public:
  explicit WatchVerb(Options& options) {
    options.AddRepeatedText("--config", folders,
                            "Folder with TSAL.config, whose store is watched. Default: the current directory",
                            "FOLDER");
    options.AddFlag("--stopped", wanted.stopped,
                    "Tell when a run has stopped, and no new one began since: its host has ended without finishing it");
    options.AddText(
        "--silent", silent,
        "Tell when an instrument whose run is not finished has recorded nothing for this time, " VELORA_DURATION_FORMS,
        "DURATION");
    options.AddRepeatedText("--outside", outside,
                            "Tell when the newest number of a parameter in a run that is not finished is outside of "
                            "this range, such as Defocus=-6..-3, Dose=..40 or Dose=0..",
                            "RANGE");
    options.AddText("--behind", behind, "Tell when a row has waited for forwarding to the facility for this time",
                    "DURATION");
    options.AddText("--grace", grace,
                    "How long a condition must hold until it has begun, and must not hold until it has ended. "
                    "--silent and --behind have their own time to begin. Default: 1m",
                    "DURATION");
    options.AddFlag("--only-new", onlyNew, "Tell nothing of what is so already at the start");
    options.AddText("--exec", command,
                    "Command of the system's shell, called when a condition begins and when it ends. The facts are in "
                    "the variables VELORA_EVENT, VELORA_CONDITION, VELORA_INSTRUMENT, VELORA_TEXT and others",
                    "COMMAND");
    options.AddText("--exec-limit", longest, "How long a call may take before it is killed. Default: 1m", "DURATION");
    options.Require("--exec-limit", "--exec");
  }

  ExitCode Execute() override {
    Prepare();
    const System::EndRequest end;
    Watch watch(Stores(), {Parameters()});
    Complain("watching; Ctrl-C ends it");
    Alerts alerts(DurationArgument("--grace", grace), onlyNew ? Alerts::AtStart::OnlyNew : Alerts::AtStart::Tell);
    AlertCalls calls(command, DurationArgument("--exec-limit", longest), &Complain);
    while (!end.Await(betweenLooks)) {
      try {
        Look(watch, alerts, calls);
      } catch (const std::bad_alloc&) {
        Complain("there was not enough memory to tell what is so now");
      }
    }
    watch.End();
    calls.End();
    if (!watch.AwaitEnd(longestEnd)) {
      std::_Exit(Done);  // a server does not answer; it is only read
    }
    return Done;
  }

 private:
  /// @throws UsageError
  void Prepare() {
    if (!silent.empty()) {
      wanted.silent = DurationArgument("--silent", silent);
    }
    if (!behind.empty()) {
      wanted.behind = DurationArgument("--behind", behind);
    }
    for (const std::string& range : outside) {
      wanted.outside.push_back(RangeArgument("--outside", range));
    }
    if (!wanted.stopped && !wanted.silent && !wanted.behind && wanted.outside.empty()) {
      throw UsageError("nothing to watch for; expected --stopped, --silent, --outside or --behind");
    }
  }
  void Look(const Watch& watch, Alerts& alerts, AlertCalls& calls) const {
    for (const Alert& alert : alerts.Look(ConditionsOf(*watch.Newest(), wanted, Store::Now()), Alerts::Clock::now())) {
      Tell(alert);
      if (!command.empty()) {
        calls.Add(alert);
      }
    }
    calls.Attend(AlertCalls::Clock::now());
  }
  std::vector<std::string> Parameters() const {
    std::set<std::string> names;
    for (const ExpectedRange& range : wanted.outside) {
      names.insert(range.parameter);
    }
    return {names.begin(), names.end()};
  }
  std::vector<WatchedStore> Stores() const {
    std::vector<WatchedStore> stores;
    for (const std::string& folder : folders.empty() ? std::vector<std::string>{""} : folders) {
      stores.push_back({static_cast<int>(stores.size()) + 1, folder, ReadSettings(folder)});
    }
    return stores;
  }

  static void Tell(const Alert& alert) {
    Say(LocalTime(ToStoredTime(Store::Now()), false) + "  " + (alert.begins ? "begins  " : "ends    ") +
        NameOf(alert.condition.subject.kind) + "  " + InWords(alert));
    FlushOut();
  }

  std::vector<std::string> folders, outside;
  std::string silent, behind, command, grace = "1m", longest = "1m";
  bool onlyNew = false;
  WantedAlerts wanted;
};

}  // namespace

extern const Registration registeredWatch = {
    "watch",
    "Watches stores until Ctrl-C, or until a service is stopped, and tells when a condition begins and when it ends: "
    "a line each, and a call of a command. That a store cannot be read is always told.",
    "watch --config /data/scope-7 --stopped --silent 10m --exec '/usr/local/bin/tell \"$VELORA_TEXT\"'\n"
    "watch --outside 'Defocus=-6..-3' --outside 'Dose=..40' --grace 5m",
    &Make<WatchVerb>};

}  // namespace Velora::Ts
