#pragma once

#include "asking/TrendSummary.h"
#include "store/reading/Reader.h"

#include <list>
#include <map>
#include <string>

namespace Velora::Ts {

/// Whole summaries of the parameters of stores in files, kept between questions. Records are only added, so a summary
/// of what was read stays true, and only what is new is read. One thread at a time may use it.
class KeptTrends {
 public:
  /// The numbers of a parameter in all of a store. Valid until the next call.
  /// @param store the newest state of it that was asked for.
  const TrendSummary& Of(int number, const Store::Reader& store, const std::string& parameter);

 private:
  static constexpr std::size_t mostKept = 3;

  struct Kept {
    int number;
    std::string parameter;
    std::string guid;  ///< Of the store; another one can take its place.
    TrendSummary summary;
    std::map<long long, long long>
        read{};  ///< The highest key that was read, by the key before the first of its range.
  };
  Kept& Find(int number, const Store::Reader& store, const std::string& parameter);

  std::list<Kept> kept;  // what was used last is first
};

}  // namespace Velora::Ts
