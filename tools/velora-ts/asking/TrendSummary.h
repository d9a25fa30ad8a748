#pragma once

#include "asking/TrendCell.h"

#include <map>
#include <tuple>
#include <vector>

namespace Velora::Ts {

/// From where numbers come, by keys of the store.
struct TrendSource {
  static constexpr std::size_t mostVersions = 100;

  long long instrument = 0;         ///< The first session of the instrument.
  std::vector<long long> versions;  ///< The activity version of the execution, or 0; behind it those above, each once.

  bool operator<(const TrendSource& other) const {
    return std::tie(instrument, versions) < std::tie(other.instrument, other.versions);
  }
};

/// The numbers of a parameter in cells, each of one source and some of the time. It has bounded memory: when there are
/// too many cells or numbers, the cells keep fewer numbers, and then become wider.
class TrendSummary {
 public:
  static constexpr std::size_t mostSources = 500;

  /// @param span microseconds among which most of the times will be.
  /// @param parts how many cells of one source there may be in the span.
  TrendSummary(long long span, long long parts);
  TrendSummary(TrendSummary&&) = default;
  TrendSummary& operator=(TrendSummary&&) = default;

  /// The number of a source. Those behind `mostSources`, and those with more than `mostVersions`, share the first
  /// number, and then IsWhole() is false.
  int NumberOf(const TrendSource& source);
  /// @param at microseconds since 1970.
  /// @param source as NumberOf() said.
  void Add(long long at, int source, double number, long long event);
  /// Counts a value that is no finite number.
  void AddOther(long long at, int source);
  /// Adds what another summary has.
  void Take(const TrendSummary& other);

  /// The microseconds of a cell. Each width that a summary can have is a multiple of all lower ones.
  long long Width() const { return width; }
  /// Whether each number is with its source.
  bool IsWhole() const { return isWhole; }
  const std::vector<TrendSource>& Sources() const { return sources; }
  /// The cells by their beginning, divided by their width, and their source.
  using Place = std::pair<long long, int>;
  using Cells = std::map<Place, TrendCell>;
  const Cells& AllCells() const { return cells; }

 private:
  TrendCell& CellOf(const Place& place);
  void Limit();
  void Widen(long long wider);
  std::size_t Settle();

  long long width;
  std::vector<TrendSource> sources{{}};
  std::map<TrendSource, int> numbers;
  bool isWhole = true;
  Cells cells;
  std::size_t points = 0;
  Place last;
  TrendCell* lastCell = nullptr;
};

/// The number of the part of this width in which a time is.
long long PartOf(long long at, long long width);

}  // namespace Velora::Ts
