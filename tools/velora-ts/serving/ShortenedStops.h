#pragma once

#include "store/reading/Rows.h"
#include "store/reading/Stops.h"

#include <string>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Ts {

/// Writes where a run stopped, and the last events there, as `show --json` does, but with limited texts, parameters and
/// paths, so that no record makes an answer long.
class ShortenedStops {
 public:
  explicit ShortenedStops(const Store::Reader& store);

  /// The object; null for a finished run.
  std::string AsJson(const Store::Run& run);
  /// Whether anything was left out until now.
  bool IsCut() const { return cut; }

 private:
  std::string StopAsJson(const Store::Stop& stop);
  std::string EventAsJson(long long number);
  void AppendParameters(std::string& json, long long number);
  void Append(std::string& json, std::string text);

  const Store::Reader& store;
  Store::Rows event, parameters;
  bool cut = false;
};

}  // namespace Velora::Ts
