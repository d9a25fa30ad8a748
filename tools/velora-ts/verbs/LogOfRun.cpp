#include "verbs/LogOfRun.h"

#include <cstdlib>

namespace Velora::Ts {

LogOfRun::LogOfRun(LogFile::LogFiles lines, long long around, bool wantsAll) {
  if (wantsAll) {
    all.emplace();
  }
  for (std::size_t after = 0; lines.Next();) {
    const LogFile::Line& line = lines.Current();
    if (all) {
      all->Add(line);
    }
    if (line.level == LogFile::Level::Info || std::llabs(line.at - around) > longestAround || after == mostAround) {
      continue;
    }
    near.push_back(line);
    after += line.at > around ? 1 : 0;
    if (near.size() - after > mostAround) {
      near.pop_front();
    }
  }
}

}  // namespace Velora::Ts
