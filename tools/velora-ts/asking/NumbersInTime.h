#pragma once

#include <cstddef>
#include <map>
#include <vector>

namespace Velora::Ts {

/// A number that an event of a run has.
struct NumberInTime {
  long long at;  ///< In microseconds.
  double number;
  long long event, execution;  ///< Keys.
};

/// Numbers in the order of time, as many as a reader can tell apart: of more, the lowest and the highest of each of
/// many equal slices of time. The slices grow with the numbers, so that each is looked at once.
class NumbersInTime {
 public:
  static constexpr std::size_t mostSlices = 1000;

  void Add(const NumberInTime& added);
  /// How many were added.
  long long Count() const { return count; }
  /// Those that are kept.
  std::vector<NumberInTime> Kept() const;

 private:
  struct Extremes {
    void Take(const Extremes& other);

    NumberInTime lowest, highest;
  };

  void Put(long long slice, const Extremes& extremes);
  void DoubleSlices();

  std::map<long long, Extremes> slices;
  int width = 0;  // of a slice, as a power of two
  long long count = 0;
};

}  // namespace Velora::Ts
