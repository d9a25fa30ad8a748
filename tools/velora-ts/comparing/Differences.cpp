#include "comparing/Differences.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

void Differences::ForEachChangedLine(const std::function<void(const ChangedLine&)>& visit) const {
  if (firstConfigurations.empty() || secondConfigurations.empty()) {
    return;
  }
  const std::size_t most = std::max(firstConfigurations.size(), secondConfigurations.size());
  for (std::size_t at = 0; at < most; ++at) {
    for (const ChangedLine& line : ChangedLines(firstConfigurations[std::min(at, firstConfigurations.size() - 1)],
                                                secondConfigurations[std::min(at, secondConfigurations.size() - 1)])) {
      visit(line);
    }
  }
}

bool Differences::AreNone(const Summary& summary) const {
  bool changed = false;
  ForEachChangedLine([&](const ChangedLine& /*unused*/) { changed = true; });
  return !changed && summary.IsEmpty(durationsCount);
}

}  // namespace Velora::Ts
