#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"

#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Whole summaries of the parameters of stores, kept between questions. Records are only added, so a summary of what
/// was read stays true, and only what is new is read. On a server a row can become visible after rows with higher keys:
/// until the transactions have ended that can add such rows, what is new is read again each time. One thread at a time
/// may use it.
class KeptTrends {
 public:
  /// The numbers of a parameter in all of a store. Valid until the next call.
  /// @param store gets the state that the store has now. Nothing that asks may outlive this.
  const TrendSummary& Of(int number, Store::Reader& store, const std::string& parameter);

  /// Reads some of the numbers that Of() would read, which lets others ask meanwhile. @param store as for Of().
  /// @return whether there was something to read.
  bool ReadSome(int number, Store::Reader& store, const std::string& parameter);

  static constexpr std::size_t mostKept = 3;

 private:
  /// What was read of a range of keys.
  struct Progress {
    long long read = 0;     ///< The highest key in the summary.
    long long settled = 0;  ///< Up to here, no row is added any more.
    long long highest = 0;  ///< The highest key that was seen when `Kept::running` was.
    long long end = 0;      ///< The highest key now.
  };
  struct Kept {
    int number;
    std::string parameter;
    std::string guid;  ///< Of the store; another one can take its place.
    TrendSummary summary;
    std::map<long long, Progress> progress{};  ///< By the key before the first of its range.
    long long running = 0;                     ///< The number of the next transaction of the server, when it was asked.
    std::optional<TrendSummary> withNewest = std::nullopt;  ///< Also has what will be read again.
  };
  static bool Look(const Store::Reader& store, Kept& kept);
  static void Begin(Store::Reader& store, Kept& kept);
  static std::vector<Store::KeyRange> NewKeys(const Store::Reader& store, Kept& kept, std::size_t most);
  Kept& LookAt(int number, Store::Reader& store, const std::string& parameter);
  Kept& Find(int number, const Store::Reader& store, const std::string& parameter);

  std::list<Kept> kept;  // what was used last is first
};

}  // namespace Velora::Ts
