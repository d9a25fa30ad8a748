#pragma once

#include "store/reading/Stops.h"

#include <VeloraLogFile/Line.h>

#include <deque>
#include <string>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Ts {

/// Why a run stopped, as far as its records and its log say: where it stopped, the last events there, and the warnings
/// and errors of the log around that time.
class StopWords {
 public:
  /// @param log the lines around the last record; null if no log is given.
  /// @param digits the significant digits of numbers.
  StopWords(const Store::Reader& store, const Store::Run& run, const std::deque<LogFile::Line>* log, int digits);

  /// Writes lines that are wrapped, not cut, at the width of the terminal. For a finished run, it writes nothing.
  /// @param lastRecorded the time of the last record, from which other times repeat neither date nor offset.
  void Write(const std::string& lastRecorded) const;
  /// An object for `show --json`; null for a finished run.
  std::string AsJson() const;

 private:
  const Store::Reader& store;
  const std::deque<LogFile::Line>* const log;
  const int digits;
  std::size_t all = 0;
  const std::vector<Store::Stop> stops;
};

}  // namespace Velora::Ts
