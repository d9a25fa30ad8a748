#pragma once

#include <chrono>
#include <string>

namespace Velora::Ts {

/// What is being done and how far it is, on a terminal, once it has taken longer than a second. Takes itself off again.
class Progress {
 public:
  /// @param total how much there is to do; 0 where that is not known.
  Progress(std::string doing, long long total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void Add(long long more) { Show(done + more); }
  void Show(long long now);

 private:
  const bool terminal;
  const std::string doing;
  const long long total;
  long long done = 0;
  bool shown = false;
  std::chrono::steady_clock::time_point next = std::chrono::steady_clock::now() + std::chrono::seconds(1);
};

}  // namespace Velora::Ts
