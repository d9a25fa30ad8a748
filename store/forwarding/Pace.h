#pragma once

#include <algorithm>
#include <chrono>

namespace Velora::Store {

/// How large portions are: as many rows as the server takes in a fraction of a second, so that nobody who waits for the
/// end of a transaction waits for long, over fast networks and slow ones.
class Pace {
 public:
  using Duration = std::chrono::steady_clock::duration;

  long long Size() const { return size; }
  /// How long the transaction of a portion may take.
  std::chrono::milliseconds Longest() const { return longest; }

  /// A portion took some time.
  void Adapt(Duration taken) {
    longest = ofAHost;
    if (taken < std::chrono::milliseconds(100)) {
      size = std::min(largest, size * 2);
    } else if (taken > std::chrono::milliseconds(250)) {
      size = std::max(1LL, size / 2);
    }
  }
  /// A portion could not be sent, perhaps because it took too long. A single row can be that long.
  void SlowDown() {
    if (size > 1) {
      size = std::max(1LL, size / 4);
    } else {
      longest = std::min(longest * 2, forOneRow);
    }
  }

 private:
  static constexpr long long largest = 5000;
  static constexpr std::chrono::milliseconds ofAHost{4000};
  static constexpr std::chrono::milliseconds forOneRow{std::chrono::minutes(10)};

  long long size = 500;
  std::chrono::milliseconds longest = ofAHost;
};

}  // namespace Velora::Store
