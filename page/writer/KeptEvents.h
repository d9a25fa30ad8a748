#pragma once

#include "page/writer/RunEvents.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace Velora::Page {

/// Which events of a run a page holds: all of them, but of a kind that has more than a plot can draw those that have
/// the lowest or the highest value of any parameter within one of the slices of the run's time, and the newest with
/// each parameter of each execution.
class KeptEvents {
 public:
  static constexpr long long mostPoints = 200000;
  static constexpr std::size_t sliceCount = 2000;

  KeptEvents(const Store::Reader& store, long long root);

  bool Keeps(const Event& event) const;
  long long Recorded() const { return recorded; }
  /// "all 41 events", or "binned: 8000 of 1000000 events".
  std::string InWords() const;
  /// The slices and how many events of each such kind are in them, as JSON; null where all events are kept.
  void AppendSlices(std::string& json, long long start) const;

 private:
  struct Extremes {
    double lowest, highest;
    long long lowestEvent, highestEvent;
  };
  /// A parameter's name and which one of that name it is; none of that name stands for the event itself.
  using Parameter = std::pair<std::string, int>;
  struct Kind {
    long long recorded = 0;
    std::array<long long, sliceCount> inSlice{};
    std::map<Parameter, std::map<std::size_t, Extremes>> extremes;  // of the event itself, those of its time
    long long execution = 0;                                        // that is being read,
    std::map<Parameter, long long> newest;                          // and its newest event with each parameter
  };

  void Count(const Store::Reader& store, long long root);
  void Choose(const Store::Reader& store, long long root);
  void Consider(Kind& kind, const Event& event);
  void KeepNewest(Kind& kind);
  std::size_t SliceOf(long long at) const;

  long long recorded = 0;
  long long first = 0, last = 0;
  std::map<std::string, Kind> binned;
  long long ofBinnedKinds = 0;
  std::vector<long long> kept;  // of the binned kinds, ascending
};

}  // namespace Velora::Page
