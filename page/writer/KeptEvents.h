#pragma once

#include "page/writer/RunEvents.h"

#include <map>
#include <string>
#include <vector>

namespace Velora::Page {

/// Decides which events of a run a page contains: all of them, unless they are more than a browser can take. Then kinds
/// are binned, those with the most events first, until the others have no more than that. Of a binned kind, the page
/// contains the events with the lowest and highest value of each parameter in each slice of the run's time, finite and
/// infinite values apart, the newest event with each parameter of each execution, and the last events of each execution
/// that did not finish.
class KeptEvents {
 public:
  /// So many events are kept of all kinds that are not binned together, and so many lowest and highest of all others.
  static constexpr std::size_t mostEvents = 200000;
  /// Slices are halved in number until they have no more than that.
  static constexpr std::size_t mostSlices = 2048;

  KeptEvents(const Store::Reader& store, long long root);

  bool Keeps(const Event& event) const;
  long long Recorded() const { return recorded; }
  /// "all 41 events", or "binned: 8000 of 1000000 events" and what was kept of them.
  std::string InWords() const;
  /// The slices and the number of events of each such kind in them, as JSON; null if all events are kept.
  void AppendSlices(std::string& json, long long start) const;

 private:
  struct Extremes {
    void Take(const Extremes& other);

    double lowest, highest;
    long long lowestEvent, highestEvent;
  };
  /// The name of a parameter and its number among the parameters of that name; number 0 is the event itself.
  using Parameter = std::pair<std::string, int>;
  /// The finite values of a parameter, or its infinite ones, which would hide the highest and lowest of the others.
  using Values = std::pair<Parameter, bool>;
  using Slices = std::map<std::size_t, Extremes>;
  struct Kind {
    long long recorded = 0;
    std::vector<long long> inSlice = std::vector<long long>(mostSlices);
    std::map<Values, Slices> extremes;      // of the event itself, those of its time
    long long execution = 0;                // that is being read,
    std::map<Parameter, long long> newest;  // and its newest event with each parameter
  };

  void Count(const Store::Reader& store, long long root);
  void Choose(const Store::Reader& store, long long root);
  void Consider(Kind& kind, const Event& event);
  void ConsiderValue(Slices& slices, std::size_t slice, double value, long long event);
  void HalveSlices();
  void KeepNewest(Kind& kind);
  void KeepLastOfUnfinished(const Store::Reader& store, long long root);
  std::size_t SliceOf(long long at) const;

  long long recorded = 0;
  long long first = 0, last = 0;
  std::size_t kinds = 0;
  std::map<std::string, Kind> binned;
  std::size_t sliceCount = mostSlices;
  std::size_t extremesCount = 0;
  long long ofBinnedKinds = 0;
  std::vector<long long> kept;  // of the binned kinds, ascending
};

}  // namespace Velora::Page
