#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"

#include <chrono>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Whole summaries of the parameters of stores, kept between questions. Records are only added, so a summary of what
/// was read stays true, and only what is new is read. On a server a row can become visible after rows with higher keys,
/// so the newest there are read again. One thread at a time may use it.
class KeptTrends {
 public:
  /// The numbers of a parameter in all of a store. Valid until the next call.
  /// @param store the newest state of it that was asked for.
  const TrendSummary& Of(int number, const Store::Reader& store, const std::string& parameter);

 private:
  static constexpr std::size_t mostKept = 3;

  /// What was read of a range of keys.
  struct Progress {
    long long read = 0;     ///< The highest key in the summary.
    long long highest = 0;  ///< The highest key that could be seen at some time.
    std::chrono::steady_clock::time_point seen{};
  };
  struct Kept {
    int number;
    std::string parameter;
    std::string guid;  ///< Of the store; another one can take its place.
    TrendSummary summary;
    std::map<long long, Progress> progress{};               ///< By the key before the first of its range.
    std::optional<TrendSummary> withNewest = std::nullopt;  ///< Also has what will be read again.
  };
  static long long SettledOf(const Store::Reader& store, const Store::KeyRange& range, long long end,
                             Progress& progress);
  static std::vector<Store::KeyRange> NewKeys(const Store::Reader& store, Kept& kept,
                                              std::vector<Store::KeyRange>& newest);
  Kept& Find(int number, const Store::Reader& store, const std::string& parameter);

  std::list<Kept> kept;  // what was used last is first
};

}  // namespace Velora::Ts
