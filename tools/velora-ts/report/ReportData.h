#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Ts {

class KeptEvents;
class Store;
struct Run;

/// Writes what a page shows of a run as one JSON object, piece by piece. Times are microseconds from the run's start;
/// what `PageColumn` says of its kinds holds. `page/view/data.js` reads it: keep the two together.
void WriteReportData(const Store& store, const Run& run, const KeptEvents& kept,
                     const std::function<void(std::string_view piece)>& write);

}  // namespace Velora::Ts
