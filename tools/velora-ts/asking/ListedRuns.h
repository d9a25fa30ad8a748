#pragma once

#include "store/asking/FulfillingRuns.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"

#include <set>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Which runs to list. An empty text selects all.
struct RunFilter {
  std::string since, until;  ///< Times as they are stored.
  std::string instrument, activity, node;
  bool unfinished = false;  ///< Only runs that are not finished.
  long long limit = 0;      ///< The highest number of runs; 0 if none was stated.
};

/// The runs to list, newest first.
class ListedRuns {
 public:
  /// The highest number of runs if none was stated.
  static constexpr long long usualLimit = 50;

  ListedRuns(const Store::Reader& store, const RunFilter& filter, const std::vector<Store::Condition>& conditions);

  /// Goes to the next run. @return whether there is one.
  bool Next();
  /// The columns of an execution, then whether the run is unfinished, and how many runs have the same first letters.
  const Store::Rows& Row() const { return rows; }
  /// Whether there are more runs than are listed because no limit was stated. Known at the end.
  bool IsCut() { return limit == 0 && left == 0 && rows.Next(); }
  /// The names in conditions without which there is no run to list.
  std::set<std::string> Missing() const { return any ? std::set<std::string>() : where.NotMet(); }

 private:
  Store::Rows rows;
  Store::FulfillingRuns where;
  const long long limit;
  long long left;
  bool any = false;
};

}  // namespace Velora::Ts
