#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/Rows.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// Reads stored times, of which neighbours mostly are of the same minute.
class TimeReader {
 public:
  /// The microseconds since 1970; 0 for a text that is no time, which only another program can have stored.
  long long Of(std::string_view stored);

 private:
  std::string minute;
  long long begin = 0;  // of the minute
};

/// Finds the instruments of sessions.
class InstrumentFinder {
 public:
  explicit InstrumentFinder(const Store::Reader& store);

  /// The instrument of a TrendSource.
  long long Of(long long session);

 private:
  Store::Rows first;
  std::map<long long, long long> known;
};

/// Finds the activity versions of executions. It remembers a limited number of them.
class VersionFinder {
 public:
  explicit VersionFinder(const Store::Reader& store);

  /// The versions of a TrendSource. @param execution 0 for none.
  const std::vector<long long>& Of(long long execution);

 private:
  struct Execution {
    long long key = -1;
    std::vector<long long> versions;
  };
  Execution& PlaceOf(long long key) { return known[static_cast<std::size_t>(key) % known.size()]; }

  std::vector<long long> Ask(long long execution);

  /// What the row of an execution says, or 0 for what is missing.
  struct Row {
    long long parent = 0, version = 0;
  };
  std::optional<Row> RowOf(long long execution);

  const long long atOnce;  // executions, one behind the other, that are read with one question
  Store::Rows rows;
  std::map<long long, std::map<long long, Row>> read;  // by key, in portions
  std::array<Execution, 1024> known;                   // by the last digits of their keys
};

}  // namespace Velora::Ts
