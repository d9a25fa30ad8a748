#pragma once

#include "page/writer/KeptEvents.h"
#include "page/writer/RunData.h"

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {
struct Run;
}  // namespace Velora::Store

namespace Velora::Page {

struct Frame;

/// The page of a run: one HTML file that needs neither another file nor a network.
class RunPage {
 public:
  /// Decides which events the page has. Store, run and log must outlive this object.
  RunPage(const Store::Reader& store, const Store::Run& run, Beside beside);

  /// The number of events in the store, of the run and of the one with which it is compared.
  long long Events() const;
  /// "all 41 events", or "binned: 8000 of 1000000 events" and what was kept of them.
  std::string EventsInWords() const { return kept.InWords(); }

  /// Writes the page in pieces.
  /// @param frame the page without its data.
  /// @param step is called for each event of the run.
  void Write(const Frame& frame, const std::function<void(std::string_view piece)>& write,
             const std::function<void()>& step) const;
  /// Writes the data alone, in the form of page/FORM.md.
  void WriteData(const std::function<void(std::string_view piece)>& write, const std::function<void()>& step) const;

 private:
  const Store::Reader& store;
  const Store::Run& run;
  const Beside beside;
  const KeptEvents kept;
};

}  // namespace Velora::Page
