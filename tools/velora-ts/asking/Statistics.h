#pragma once

#include "asking/NumberGroups.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// From a stored time, or the beginning of one, to before another.
using Period = std::pair<std::string, std::string>;

/// A group of numbers in some of the time.
struct Bin {
  long long from = 0, to = 0;  ///< The first and the last time, in microseconds.
  Store::Distribution distribution;
};

/// What the numbers of a group are like.
struct GroupSummary {
  std::string name;             ///< Of the group, as stored; the node of a run.
  std::string run;              ///< The guid of a run.
  std::string firstAt, lastAt;  ///< Stored times.
  Store::Distribution distribution;
  std::optional<double> drift;                     ///< Its median less that of the period before.
  std::vector<Bin> bins;                           ///< In the order of time, if they are wanted.
  std::vector<std::pair<long long, double>> each;  ///< The numbers with their times, if they are few and wanted.
};

/// What the numbers of a parameter are like.
struct Statistics {
  std::vector<GroupSummary> groups;
  GroupSummary all;
  std::optional<GroupSummary> before;  ///< The period before.
  std::size_t others = 0;              ///< Values that are no finite numbers.

  bool HasAny() const { return all.distribution.count + others > 0; }
};

/// Reads the numbers of a parameter and says what they are like.
/// @param before the period from which drifts are counted. An instrument or an activity is compared with itself, any
/// other group with the whole period.
/// @param withBins whether the picture of them is wanted.
Statistics StatisticsOf(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter,
                        GroupBy by, const std::optional<Period>& before, bool withBins = false);

/// A JSON object with the statistics, without its closing brace.
/// @param by the name of the groups; empty for none.
std::string AsJson(const Statistics& statistics, const std::string& parameter, const std::string& by);

}  // namespace Velora::Ts
