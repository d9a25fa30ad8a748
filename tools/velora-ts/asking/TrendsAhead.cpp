#include "asking/TrendsAhead.h"

#include "store/Error.h"

#include <utility>

namespace Velora::Ts {

using Clock = std::chrono::steady_clock;

TrendsAhead::TrendsAhead(Trends& trends, std::vector<TrendStore> stores, std::vector<std::string> parameters)
    : trends(trends),
      stores(std::move(stores)),
      parameters(std::move(parameters)),
      reading(std::async(std::launch::async, [this] { Read(); })) {}

void TrendsAhead::End() {
  const std::lock_guard lock(mutex);
  hasEnded = true;
  changed.notify_all();
}

bool TrendsAhead::AwaitEnd(std::chrono::milliseconds longest) const {
  return reading.wait_for(longest) == std::future_status::ready;
}

/// @return whether it goes on.
bool TrendsAhead::Pause(Clock::duration time) {
  std::unique_lock lock(mutex);
  return !changed.wait_for(lock, time, [this] { return hasEnded; });
}

void TrendsAhead::Read() {
  static constexpr int pauses = 3;  // as long as reading, so that it takes a quarter of a processor at most
  std::size_t left = KeptTrends::mostKept;
  for (const std::string& parameter : parameters) {
    for (const TrendStore& store : stores) {
      if (left-- == 0) {
        return;
      }
      try {
        for (bool isMore = true; isMore;) {
          const Clock::time_point begin = Clock::now();
          isMore = trends.ReadAhead(store, parameter);
          if (!Pause(pauses * (Clock::now() - begin))) {
            return;
          }
        }
      } catch (const Store::Error&) {
        continue;  // an answer will say it
      }
    }
  }
}

}  // namespace Velora::Ts
