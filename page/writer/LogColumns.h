#pragma once

#include <VeloraLogFile/LogFiles.h>

#include <cstddef>
#include <deque>
#include <map>
#include <string>

namespace Velora::Page {

/// The lines of logs as columns of the page's data. If they are too many, the page has the newest ones.
class LogColumns {
 public:
  /// So many warnings and errors are in a page, and so many informational lines, and so many bytes of texts of each.
  static constexpr std::size_t mostLines = 20000;
  static constexpr std::size_t mostBytes = std::size_t{8} << 20U;

  /// Reads the lines of a run.
  explicit LogColumns(LogFile::LogFiles& lines);

  /// "12 lines of the log", and how many were left out.
  std::string InWords() const;
  /// @param start the time from which times are counted, in microseconds since 1970.
  void AppendJson(std::string& json, long long start) const;

 private:
  struct Kept {
    std::deque<LogFile::Line> lines;
    std::size_t bytes = 0;
  };

  void Keep(const LogFile::Line& line);

  Kept infos, others;
  std::map<LogFile::Level, long long> leftOut;
};

}  // namespace Velora::Page
