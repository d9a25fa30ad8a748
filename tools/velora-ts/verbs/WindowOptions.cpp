#include "verbs/WindowOptions.h"

#include "asking/TimeArgument.h"
#include "store/values/StoredText.h"

namespace Velora::Ts {

using namespace Store;

WindowOptions::WindowOptions(Options& options) {
  options.AddText("--since", since, "Only events at this time or later: " VELORA_TIME_FORMS, "TIME");
  options.AddText("--until", until, "Only events before this time", "TIME");
  options.AddText("--instrument", instrument, "Only events of this instrument", "INSTRUMENT");
  options.AddText("--activity", activity, "Only events below an execution of this activity or activity version",
                  "ACTIVITY");
  options.AddText("--name", name, "Only events of this name", "EVENT");
}

Store::EventWindow WindowOptions::Window() const {
  EventWindow window;
  if (!since.empty()) {
    window.from = TimeArgument(since);
  }
  if (!until.empty()) {
    window.before = TimeArgument(until);
  }
  window.instrument = ToStoredText(instrument);
  window.activity = ToStoredText(activity);
  window.name = ToStoredText(name);
  return window;
}

}  // namespace Velora::Ts
