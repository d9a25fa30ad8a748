#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// The text form 0.0.4 in which Prometheus takes metrics. All metrics are gauges.
class PrometheusText {
 public:
  /// The name of a label and the text that it has.
  using Labels = std::vector<std::pair<const char*, std::string>>;

  /// Begins a metric; its samples follow.
  /// @param help one line, without a backslash.
  void Begin(const std::string& name, std::string_view help);
  /// Adds a sample. Any text can be in a label: it is made printable and cut, and what was changed by that gets a mark
  /// of its own, so that two texts stay two. Labels that the metric has already are left out, and so is what is more
  /// than the most that a metric can have.
  void Add(const Labels& labels, double value);

  /// All that was added.
  const std::string& Text() const { return text; }
  /// How many samples were left out.
  long long LeftOut() const { return leftOut; }

  static constexpr std::size_t mostSamples = 2000;  ///< Of a metric.

 private:
  std::string text, name;
  std::set<std::string> samples;  // of the metric, by their labels
  long long leftOut = 0;
};

}  // namespace Velora::Ts
