#pragma once

#include "output/Units.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "verbs/LogOfRun.h"

#include <string>
#include <vector>

namespace Velora::Ts {

struct ShowOptions {
  bool tree = false;                 ///< All levels below the run, not only its children.
  bool events = false;               ///< The events of the run too.
  std::vector<std::string> columns;  ///< The parameters to show of each execution.
  Units units;                       ///< Of these.
  std::string order;                 ///< The parameter whose times order the executions; empty for none.
  int digits = usualDigits;          ///< The significant digits of numbers.
};

/// Writes a run: its head, a row for each execution, and its events if they are wanted.
/// @param log the log of the host; null for none.
void ShowInWords(const Store::Reader& store, const Store::Run& run, const ShowOptions& options, LogOfRun* log);

/// Writes that as a JSON object.
void ShowAsJson(const Store::Reader& store, const Store::Run& run, const ShowOptions& options, LogOfRun* log);

}  // namespace Velora::Ts
