#pragma once

#include "asking/TrendSummary.h"
#include "asking/Trends.h"
#include "store/reading/Reader.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// The names of the groups to which sources belong: an instrument, an activity with its version, or an empty text.
/// Nothing for those of another instrument or activity than the window says.
/// @param knowsAll whether the sources have the versions above them; otherwise their activity is as asked.
std::vector<std::optional<std::string>> GroupsOf(const Store::Reader& store, const std::vector<TrendSource>& sources,
                                                 const TrendQuestion& question, bool knowsAll);

/// Some cells of a summary of a store, and their groups.
struct TrendPart {
  int store = 1;
  long long width = 0;
  TrendSummary::Cells cells = {};
  std::vector<std::optional<std::string>> groups = {};  ///< By source.
};

/// A group, with what its numbers were in parts of the time.
struct TrendGroup {
  std::string name;
  std::size_t count = 0, others = 0;         ///< Numbers, and values that are none.
  std::map<long long, TrendCell> bins = {};  ///< By their beginning, divided by their width.
};

/// What is drawn of a trend.
struct TrendPicture {
  static constexpr std::size_t mostGroups = 10;
  static constexpr long long mostBins = 200;  ///< Of a group.

  /// Puts cells together. Of more than `mostGroups`, those with the most numbers remain.
  explicit TrendPicture(const std::vector<TrendPart>& parts);

  long long width = 0;             ///< Of a bin, in microseconds.
  std::vector<TrendGroup> groups;  ///< In the order of their names.
  std::size_t together = 0;        ///< How many groups are in `rest`.
  TrendGroup rest;
};

}  // namespace Velora::Ts
