#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A progress bar on a terminal: the share of the bytes that were read. Draws nothing if standard error is not a
/// terminal.
class ProgressBar {
 public:
  /// @param total bytes in all files.
  explicit ProgressBar(std::uint64_t total);

  /// @param done bytes read so far.
  /// @param label the name of the file that is read now.
  void Show(std::uint64_t done, const std::string& label);
  /// Removes the bar, so that something else can be written on its line.
  void Clear();
  bool IsShown() const { return terminal; }

 private:
  const bool terminal;
  const std::uint64_t total;
  std::chrono::steady_clock::time_point nextDrawing{};
};
