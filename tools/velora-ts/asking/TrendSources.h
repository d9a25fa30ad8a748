#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/Rows.h"

#include <array>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// Reads stored times, of which neighbours mostly are of the same day.
class TimeReader {
 public:
  /// The microseconds since 1970; 0 for a text that is no time, which only another program can have stored.
  long long Of(std::string_view stored);

 private:
  std::string day;
  long long begin = 0;  // of the day
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

/// Finds the sources of events: their instruments, and the activity versions of their executions. It remembers a
/// limited number of executions.
class SourceFinder {
 public:
  /// @param store and @param summary, which gets the sources, must stay.
  SourceFinder(const Store::Reader& store, TrendSummary& summary);

  /// The number of a source in the summary. @param execution 0 for none.
  int Of(long long session, long long execution);

  /// Reads what is above the executions between two keys of a server, with one question, instead of what it read so.
  void ReadAbove(long long first, long long last);
  /// The number of the source of executions of which the parent was read so. @param parent and @param version 0 for
  /// none.
  int Below(long long session, long long parent, long long version);

 private:
  using Versions = std::vector<long long>;  // as in TrendSource
  /// What the row of an execution says, or 0 for what is missing.
  struct Row {
    long long key = 0, parent = 0, version = 0;
  };
  struct Execution {
    long long key = 0;
    const Versions* versions = nullptr;
  };
  Execution& PlaceOf(long long key) { return known[static_cast<std::size_t>(key) % known.size()]; }

  int NumberOf(long long session, const Versions& versions);
  const Versions& VersionsOf(long long execution);
  const Versions& Joined(const Versions& above, long long version);
  const Row& RowOf(long long execution);

  const Store::Reader& store;
  TrendSummary& summary;
  InstrumentFinder instruments;
  Store::Rows rows;
  std::map<long long, const Versions*> readAbove;  // as ReadAbove() found them
  std::map<long long, std::vector<Row>> read;      // executions, one behind the other, by the first key
  std::set<Versions> lists;
  const Versions& tooMany;            // that is in no source of a whole summary
  std::array<Execution, 1024> known;  // by the last digits of their keys
  std::map<std::pair<long long, const Versions*>, int> numbers;
  long long lastSession = -1, lastExecution = -1;
  int lastNumber = 0;
};

}  // namespace Velora::Ts
