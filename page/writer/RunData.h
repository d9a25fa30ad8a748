#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Page {

class Against;
class KeptEvents;
class LogColumns;

/// What a page shows beside the record.
struct Beside {
  std::map<std::string, std::string> units;  ///< Of parameters, by their names.
  const LogColumns* log = nullptr;           ///< Lines of the log; null for none.
  const Against* against = nullptr;          ///< Another run, to be compared with; null for none.
};

/// Writes the data of a run's page in pieces, in the form of page/FORM.md.
/// @param step is called for each event of the run, and of the run that it is compared with.
void WriteRunData(const Store::Reader& store, const Store::Run& run, const KeptEvents& kept, const Beside& beside,
                  const std::function<void(std::string_view piece)>& write, const std::function<void()>& step);

}  // namespace Velora::Page
