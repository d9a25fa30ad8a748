#pragma once

#include "store/reading/Runs.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// An instrument configuration, as far as it is compared. Its texts are as stored.
struct Configuration {
  long long key = 0;
  std::string savedAt;
  std::vector<std::string> facts;  ///< What was known about the instrument, as "NAME: VALUE".
  std::string text;
};

/// The configurations to which the events of a run refer, in the order of their keys, each time that they differ from
/// the one before.
std::vector<Configuration> ConfigurationsOf(const Reader& store, const Run& run);

/// A line that is in one configuration alone.
struct ChangedLine {
  std::optional<std::size_t> first, second;  ///< Its number there, from 1; 0 for a fact.
  std::string text;                          ///< Readable.
};

/// The lines that two configurations do not have in common, in their order.
std::vector<ChangedLine> ChangedLines(const Configuration& first, const Configuration& second);

/// Visits the lines that differ between the configurations of two runs. The n-th configuration is compared with the
/// n-th of the other run, or with its last one if it has less. Nothing differs from a run without any.
void ForEachChangedLine(const std::vector<Configuration>& first, const std::vector<Configuration>& second,
                        const std::function<void(const ChangedLine&)>& visit);

}  // namespace Velora::Store
