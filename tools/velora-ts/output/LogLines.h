#pragma once

#include <VeloraLogFile/Line.h>

#include <string>

namespace Velora::Ts {

// Lines of a host's log beside what it recorded.

/// The time of a line as a store would have it.
std::string StoredTimeOf(const LogFile::Line& line);
/// A line as a JSON object.
std::string LogLineAsJson(const LogFile::Line& line);

/// Lines that are read in order beside something else with times.
/// @tparam Lines has Next() and Current().
template <typename Lines>
class LinesBeside {
 public:
  explicit LinesBeside(Lines& lines) : lines(lines) {}

  /// Visits the lines before a time that were not visited yet.
  template <typename Visitor>
  void Before(long long at, const Visitor& visit) {
    while ((pending = pending || lines.Next()) && lines.Current().at < at) {
      visit(lines.Current());
      pending = false;
    }
  }

 private:
  Lines& lines;
  bool pending = false;  // whether the current line was not visited yet
};

}  // namespace Velora::Ts
