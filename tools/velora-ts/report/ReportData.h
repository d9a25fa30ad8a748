#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Ts {

class KeptEvents;

/// Writes what a page shows of a run as one JSON object, piece by piece. Times are microseconds from the run's start;
/// what `PageColumn` says of its kinds holds. `page/view/recorded.js` reads it: keep the two together.
void WriteReportData(const Store::Reader& store, const Store::Run& run, const KeptEvents& kept,
                     const std::function<void(std::string_view piece)>& write);

}  // namespace Velora::Ts
