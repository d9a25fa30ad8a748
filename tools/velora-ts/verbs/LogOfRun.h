#pragma once

#include <VeloraLogFile/LogFiles.h>
#include <VeloraLogFile/SpooledLines.h>

#include <deque>
#include <optional>

namespace Velora::Ts {

/// The log of a run, read once: the warnings and errors around a time, and if they are wanted later all lines.
class LogOfRun {
 public:
  /// So many lines until the time and so many after it, and of so many microseconds before and after.
  static constexpr std::size_t mostAround = 10;
  static constexpr long long longestAround = 600'000'000;

  /// @param around microseconds since 1970.
  LogOfRun(LogFile::LogFiles lines, long long around, bool all);

  const std::deque<LogFile::Line>& Around() const { return near; }
  /// All lines, if they are wanted.
  LogFile::SpooledLines* All() { return all ? &*all : nullptr; }

 private:
  std::deque<LogFile::Line> near;
  std::optional<LogFile::SpooledLines> all;
};

}  // namespace Velora::Ts
