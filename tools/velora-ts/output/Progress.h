#pragma once

#include <chrono>
#include <string>

namespace Velora::Ts {

/// Shows on a terminal how far a task is, once it has taken longer than a second. The line disappears at the end.
class Progress {
 public:
  /// @param doing the task, in words.
  /// @param total the number of steps; 0 if it is not known.
  Progress(std::string doing, long long total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Counts further steps as done.
  void Add(long long more) { Show(done + more); }
  /// Sets the number of steps that are done.
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
