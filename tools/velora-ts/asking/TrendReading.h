#pragma once

#include "asking/TrendSources.h"
#include "asking/TrendSummary.h"
#include "store/asking/EventWindow.h"
#include "store/reading/KnownStores.h"

#include <string>
#include <utility>

namespace Velora::Ts {

/// An empty summary whose cells are narrow enough for the events of a window that only limits times.
TrendSummary SummaryFor(const Store::Reader& store, const Store::EventWindow& window);

/// Reads the numbers of a parameter in a window of events, along the index of times. The sources in the summary have
/// the versions of the executions alone, because the window can say which are above them.
/// @param parameter its name, as stored.
TrendSummary ReadWindow(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter);

/// Reads the numbers of a parameter in the events of keys.
class KeysReader {
 public:
  /// @param store and @param summary, which gets the numbers, must stay.
  KeysReader(const Store::Reader& store, std::string parameter, TrendSummary& summary)
      : store(store), parameter(std::move(parameter)), summary(summary), sources(store, summary) {}

  void Read(const Store::KeyRange& keys);

 private:
  void ReadFile(const Store::KeyRange& keys);
  void ReadServer(const Store::KeyRange& keys);
  void ReadGroups(Store::Rows& groups, long long first);

  const Store::Reader& store;
  const std::string parameter;
  TrendSummary& summary;
  SourceFinder sources;
  TimeReader times;
};

}  // namespace Velora::Ts
