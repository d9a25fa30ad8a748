#pragma once

#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"

#include <string>
#include <string_view>

namespace Velora::Ts {

// Whether what did not finish still runs, for a person.

/// How an execution or a run is shown that did not finish: "running", "STOPPED", or "UNFINISHED" if it is not known
/// which of them it is.
std::string UnfinishedInWords(Store::RunState state);
/// That, or the status of an execution that did finish.
std::string StateInWords(const Store::Execution& execution, Store::RunState state);
/// Whether it must not be overlooked.
bool IsAlarming(Store::RunState state);

/// How long ago a stored time was: "0:05:12 ago". Empty if it is not a time.
std::string Ago(std::string_view stored);
/// "STOPPED; last recorded 2026-11-26 04:42:58.120+01:00, 5:12:44 ago", and why it is not known if it is not.
std::string UnfinishedInWords(const Store::KnownState& known, std::string_view lastRecorded);

/// The member `state` of a JSON object, and `why` if it is not known, without braces.
std::string JsonState(const Store::KnownState& known);
/// The same for a run, with `last_recorded_at`.
std::string JsonState(const Store::KnownState& known, std::string_view lastRecorded);

}  // namespace Velora::Ts
