#pragma once

#include "output/Output.h"
#include "store/comparing/Comparison.h"
#include "store/comparing/Configurations.h"
#include "store/comparing/Summary.h"
#include "store/reading/Executions.h"
#include "store/reading/Hosts.h"

#include <functional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// The two runs of a comparison, and what was found.
struct Differences {
  const Store::Comparison& comparison;
  Store::Execution first, second;  ///< The roots.
  Store::Hosts &firstHosts, &secondHosts;
  Store::KnownState firstState, secondState;  ///< Of the runs.
  bool durationsCount = false;                ///< Whether durations alone make two runs different.
  std::vector<Store::Configuration> firstConfigurations, secondConfigurations;

  void ForEachChangedLine(const std::function<void(const Store::ChangedLine&)>& visit) const {
    Store::ForEachChangedLine(firstConfigurations, secondConfigurations, visit);
  }
  bool AreNone(const Store::Summary& summary) const;
};

/// A comparison with what is said of its two runs.
class ComparedRuns {
 public:
  /// @param durationsCount whether durations alone make two runs different.
  ComparedRuns(const Store::Comparison::Side& first, const Store::Comparison::Side& second,
               const Store::ComparisonRules& rules, bool durationsCount);

  const Differences& Found() const { return found; }

 private:
  const Store::Comparison comparison;
  Store::Hosts firstHosts, secondHosts;
  const Differences found;
};

struct InWordsOptions {
  bool all = false;  ///< Also every difference that is otherwise summarised, and what is equal.
  int digits = 0;    ///< The significant digits of numbers.
};
/// Writes them for a person.
void WriteDifferencesInWords(const Differences& found, const Store::Summary& summary, const InWordsOptions& options);

/// How much of the differences is written. What is left out is counted.
struct DifferencesLimit {
  std::size_t first = 0;    ///< So many of each kind and name; 0 for all, also of groups, lines and steps.
  std::size_t groups = 0;   ///< So many kinds and names.
  std::size_t lines = 0;    ///< So many lines of configurations.
  std::size_t longest = 0;  ///< So many characters of each text; 0 for whole texts.
  std::size_t deepest = 0;  ///< So many steps of each path: the innermost.
};

/// Writes them as a JSON object and summarises them meanwhile.
/// @param all also what is equal.
/// @param more further members for the begin of the object, each with a comma behind it.
/// @param limit a member `cut` says whether texts are cut, if they can be, and `left_out` what else is not written.
void WriteDifferencesAsJson(const Differences& found, Store::Summary& summary, bool all, const Sink& write,
                            const std::string& more = "", const DifferencesLimit& limit = {});

}  // namespace Velora::Ts
