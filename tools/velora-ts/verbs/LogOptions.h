#pragma once

#include "verbs/Verb.h"

#include <VeloraLogFile/LogFiles.h>

#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
struct Run;
}  // namespace Velora::Store

namespace Velora::Ts {

/// The options of a verb that shows the lines of a host's log beside what was recorded.
class LogOptions {
 public:
  explicit LogOptions(Options& options);

  bool IsGiven() const { return !files.empty(); }
  /// The lines of the time of a run: while it runs, all from its start on; if it stopped, also those of the ten minutes
  /// after its last record.
  /// @throws UsageError when --log-format cannot be understood.
  LogFile::LogFiles LinesOf(const Store::Reader& store, const Store::Run& run) const;
  /// The lines from the start of a run on, also those that are written later.
  LogFile::LogFiles Following(const Store::Run& run) const;

 private:
  LogFile::Selection Selection() const;

  std::vector<std::string> files;
  std::string form;
  bool infos = false;
};

}  // namespace Velora::Ts
