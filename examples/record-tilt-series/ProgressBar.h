#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A bar on a terminal: how many bytes of all have been read. Draws nothing where standard error is no terminal.
class ProgressBar {
 public:
  /// @param total bytes in all files.
  explicit ProgressBar(std::uint64_t total);

  /// @param done bytes read so far.
  /// @param label what is being read.
  void Show(std::uint64_t done, const std::string& label);
  /// Takes the bar off its line, so that something else can be written there.
  void Clear();
  bool IsShown() const { return terminal; }

 private:
  const bool terminal;
  const std::uint64_t total;
  std::chrono::steady_clock::time_point nextDrawing{};
};
