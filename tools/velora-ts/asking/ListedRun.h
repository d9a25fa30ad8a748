#pragma once

#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"

#include <string>

namespace Velora::Ts {

/// A run and what is said of it.
struct ListedRun {
  Store::Execution root;
  bool unfinished = false;
  Store::KnownState known;   ///< Whether it still runs.
  std::string lastRecorded;  ///< The time of its last record. If it finished, that is its end.
};

/// The members of the JSON object for a run, without braces.
/// @param notes the notes of the run, as a JSON list.
std::string JsonMembers(const ListedRun& run, const std::string& notes);

}  // namespace Velora::Ts
