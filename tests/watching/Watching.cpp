#include "Watching.h"

using namespace Velora::Ts;

namespace {

std::string InWords(const RunNow& run) {
  std::string words = run.node + ' ' + NameOf(run.state);
  const char* separator = " in ";
  for (const StepNow& step : run.path) {
    words += separator + step.node + (step.number ? " #" + std::to_string(*step.number) : "");
    separator = " > ";
  }
  words += ", " + std::to_string(run.events) + " events";
  if (run.lastEvent) {
    words += ", " + run.lastEvent->name;
    for (const ParameterNow& parameter : run.lastEvent->parameters) {
      words += ' ' + parameter.name + '=' + parameter.value;
    }
  }
  return words;
}

std::string InWords(const InstrumentNow& instrument) {
  std::string words = instrument.name + ' ';
  words += instrument.state == Velora::Store::RunState::Finished ? "idle" : NameOf(instrument.state);
  words += ", " + std::to_string(instrument.hostsAlive) + " alive";
  for (const auto& run : instrument.runs) {
    words += " | " + InWords(*run);
  }
  words += instrument.moreRuns > 0 ? " | " + std::to_string(instrument.moreRuns) + " more" : "";
  const bool isListed = instrument.newest && !instrument.runs.empty() && *instrument.newest == *instrument.runs.front();
  return words +
         (!instrument.newest ? "" : " | newest " + (isListed ? instrument.newest->node : InWords(*instrument.newest)));
}

}  // namespace

std::string Watching::InWords(const StoreNow& store) {
  std::string words = store.error.empty() ? "" : "error";
  for (const InstrumentNow& instrument : store.instruments) {
    words += (words.empty() ? "" : "\n") + ::InWords(instrument);
  }
  for (const ValueNow& value : store.values) {
    words += "\n" + value.instrument + ' ' + value.parameter + '=' + std::to_string(value.value);
  }
  return words;
}

std::string Watching::SaidOnce(const Watch& watch, const std::function<bool(const std::string&)>& isExpected) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  std::shared_ptr<const Now> now = watch.Newest();
  while (!isExpected(InWords(*now->stores.front())) && std::chrono::steady_clock::now() < end) {
    now = watch.WaitAfter(now->sequence, std::chrono::milliseconds(500));
  }
  return InWords(*now->stores.front());
}
