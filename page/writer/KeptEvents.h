#pragma once

#include "page/writer/RunEvents.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace Velora::Page {

/// Decides which events of a run a page contains: all of them, unless a kind has more than a plot can draw. Of such a
/// kind, it contains the events with the lowest and highest value of each parameter in each slice of the run's time,
/// and the newest event with each parameter of each execution.
class KeptEvents {
 public:
  static constexpr long long mostPoints = 200000;
  static constexpr std::size_t sliceCount = 2000;

  KeptEvents(const Store::Reader& store, long long root);

  bool Keeps(const Event& event) const;
  long long Recorded() const { return recorded; }
  /// "all 41 events", or "binned: 8000 of 1000000 events".
  std::string InWords() const;
  /// The slices and the number of events of each such kind in them, as JSON; null if all events are kept.
  void AppendSlices(std::string& json, long long start) const;

 private:
  struct Extremes {
    double lowest, highest;
    long long lowestEvent, highestEvent;
  };
  /// The name of a parameter and its number among the parameters of that name; number 0 is the event itself.
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
