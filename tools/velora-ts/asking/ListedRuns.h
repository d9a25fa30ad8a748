#pragma once

#include "asking/ListedRun.h"
#include "store/asking/FulfillingRuns.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Velora::Ts {

/// A place in a list of runs.
struct RunPlace {
  std::string startedAt;  ///< As it is stored.
  long long key = 0;      ///< Of the root.
};

/// Which runs to list. An empty text selects all.
struct RunFilter {
  /// The values of `state`.
  static const std::vector<std::string> states;

  std::string since, until;  ///< Times as they are stored.
  std::string instrument, activity, node;
  std::string text;               ///< A part of node, description, activity or a note, or how the guid begins.
  std::string state;              ///< "unfinished" stands for every state but "finished".
  std::optional<RunPlace> after;  ///< Only what follows it in the list.
  long long limit = 0;            ///< The highest number of runs; 0 if none was stated.
  std::size_t longest = 0;        ///< So many characters of each text are read; 0 for all.
};

/// The runs to list, newest first.
class ListedRuns {
 public:
  using Clock = std::chrono::steady_clock;

  /// The highest number of runs if none was stated.
  static constexpr long long usualLimit = 50;

  ListedRuns(const Store::Reader& store, const RunFilter& filter, const std::vector<Store::Condition>& conditions);

  /// Looks for no further run after this time, though at one run at least.
  void EndAt(Clock::time_point time) { end = time; }

  /// Goes to the next run. @return whether there is one.
  bool Next();
  /// The run at which it stands.
  ListedRun Run();
  /// Whether it is the only run with these first letters of its guid.
  bool HasUniqueLetters() const;
  /// The place of the run that was read last, listed or not.
  RunPlace Place() const;
  /// Whether Next() found no run because the time was over.
  bool IsInterrupted() const { return interrupted; }
  /// Whether there are more runs than are listed because no limit was stated. Known at the end.
  bool IsCut() { return limit == 0 && left == 0 && rows.Next(); }
  /// The names in conditions without which there is no run to list.
  std::set<std::string> Missing() const { return any ? std::set<std::string>() : where.NotMet(); }

 private:
  bool Fits();

  Store::Rows rows;
  Store::FulfillingRuns where;
  Store::Hosts hosts;
  Store::LastRecords last;
  const RunFilter filter;
  const long long limit;
  long long left;
  Clock::time_point end = Clock::time_point::max();
  bool any = false, interrupted = false;
};

}  // namespace Velora::Ts
