#pragma once

#include "asking/Trends.h"

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Reads trends that are likely to be asked for in a thread of its own, slowly, because hosts may record beside it. It
/// reads no more than are kept.
class TrendsAhead {
 public:
  /// @param trends must stay until this ended. @param parameters as stored.
  TrendsAhead(Trends& trends, std::vector<TrendStore> stores, std::vector<std::string> parameters);
  TrendsAhead(const TrendsAhead&) = delete;
  TrendsAhead& operator=(const TrendsAhead&) = delete;
  ~TrendsAhead() { End(); }

  /// It reads no further portion.
  void End();
  /// @return whether it ended within some time.
  bool AwaitEnd(std::chrono::milliseconds longest) const;

 private:
  void Read();
  bool Pause(std::chrono::steady_clock::duration time);

  Trends& trends;
  const std::vector<TrendStore> stores;
  const std::vector<std::string> parameters;
  std::mutex mutex;
  std::condition_variable changed;
  bool hasEnded = false;  // guarded by the mutex
  std::future<void> reading;
};

}  // namespace Velora::Ts
