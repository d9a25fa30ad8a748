#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Page {

class KeptEvents;
class LogColumns;

/// Writes the data of a run's page in pieces, in the form of page/FORM.md.
/// @param log null for none.
/// @param step is called for each event of the run.
void WriteRunData(const Store::Reader& store, const Store::Run& run, const KeptEvents& kept, const LogColumns* log,
                  const std::function<void(std::string_view piece)>& write, const std::function<void()>& step);

}  // namespace Velora::Page
