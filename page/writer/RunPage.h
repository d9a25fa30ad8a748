#pragma once

#include "page/writer/KeptEvents.h"

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {
struct Run;
}  // namespace Velora::Store

namespace Velora::Page {

/// The page of a run: one HTML file, which needs no other and no network.
class RunPage {
 public:
  /// Reads which events the page will have. Store and run must outlive it.
  RunPage(const Store::Reader& store, const Store::Run& run);

  /// How many events the store has of the run.
  long long Events() const { return kept.Recorded(); }
  /// "all 41 events", or "binned: 8000 of 1000000 events".
  std::string EventsInWords() const { return kept.InWords(); }

  /// Writes the page, piece by piece.
  /// @param step is called for each event of the run.
  void Write(const std::function<void(std::string_view piece)>& write, const std::function<void()>& step) const;

 private:
  const Store::Reader& store;
  const Store::Run& run;
  const KeptEvents kept;
};

}  // namespace Velora::Page
