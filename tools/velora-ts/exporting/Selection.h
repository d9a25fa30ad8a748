#pragma once

#include "reading/Runs.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// What is exported.
struct Selection {
  std::vector<Run> runs;
  std::optional<std::pair<std::string, std::string>> ofNoRun;  ///< Events of no run from a time on, before another.
};

/// Told of each record that has been written.
using Step = std::function<void()>;

/// Comma-separated values: a row for each event, a column for each parameter.
void WriteCsv(const Store& store, const Selection& selection, const Step& step);
/// Trace events: what ran when, for timeline viewers.
void WriteTrace(const Store& store, const Selection& selection, const Step& step);

}  // namespace Velora::Ts
