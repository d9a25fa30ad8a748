#include "output/StateWords.h"

#include "output/Terminal.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

std::string UnfinishedInWords(RunState state) {
  return state == RunState::Running ? "running" : state == RunState::Stopped ? "STOPPED" : unfinishedInWords;
}

std::string StateInWords(const Execution& execution, RunState state) {
  return IsRunning(execution) ? UnfinishedInWords(state) : StateInWords(execution);
}

bool IsAlarming(RunState state) { return state == RunState::Stopped || state == RunState::NotKnown; }

// The clock of the host can be ahead of this one.
std::string Ago(std::string_view stored) {
  const std::optional<double> seconds = SecondsBetween(stored, ToStoredTime(Now()));
  return seconds ? Duration(std::max(*seconds, 0.0), false) + " ago" : "";
}

std::string UnfinishedInWords(const KnownState& known, std::string_view lastRecorded) {
  return UnfinishedInWords(known.state) + "; last recorded " + LocalTime(lastRecorded, true) + ", " +
         Ago(lastRecorded) +
         (known.why.empty() ? "" : "; whether its host still runs is not known: " + Printable(known.why));
}

std::string JsonState(const KnownState& known) {
  std::string json = std::string("\"state\":\"") + NameOf(known.state) + '"';
  if (!known.why.empty()) {
    json += ",\"why\":";
    AppendText(json, known.why);
  }
  return json;
}

std::string JsonState(const KnownState& known, std::string_view lastRecorded) {
  std::string json = JsonState(known) + ",\"last_recorded_at\":";
  AppendText(json, lastRecorded);
  return json;
}

}  // namespace Velora::Ts
