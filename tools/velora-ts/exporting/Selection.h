#pragma once

#include "store/reading/Runs.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// What is exported.
struct Selection {
  std::vector<Store::Run> runs;
  /// Events that belong to no run: those from the first time on and before the second.
  std::optional<std::pair<std::string, std::string>> ofNoRun;
};

/// Called after each record that has been written, to show how far the export is.
using Step = std::function<void()>;

}  // namespace Velora::Ts
