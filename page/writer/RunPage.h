#pragma once

#include "page/writer/KeptEvents.h"

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {
struct Run;
}  // namespace Velora::Store

namespace Velora::Page {

class LogColumns;

/// The page of a run: one HTML file that needs neither another file nor a network.
class RunPage {
 public:
  /// Decides which events the page has. Store, run and log must outlive this object.
  /// @param log null for none.
  RunPage(const Store::Reader& store, const Store::Run& run, const LogColumns* log = nullptr);

  /// The number of events of the run in the store.
  long long Events() const { return kept.Recorded(); }
  /// "all 41 events", or "binned: 8000 of 1000000 events" and what was kept of them.
  std::string EventsInWords() const { return kept.InWords(); }

  /// Writes the page in pieces.
  /// @param step is called for each event of the run.
  void Write(const std::function<void(std::string_view piece)>& write, const std::function<void()>& step) const;

 private:
  const Store::Reader& store;
  const Store::Run& run;
  const LogColumns* const log;
  const KeptEvents kept;
};

}  // namespace Velora::Page
