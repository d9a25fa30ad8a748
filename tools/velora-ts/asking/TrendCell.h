#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace Velora::Ts {

/// The numbers that one source recorded in some of the time. Counts and extremes are exact. While no more than
/// `mostPoints` are kept, so are the quantiles; Settle() keeps the middle of each of `mostPoints` parts of more.
class TrendCell {
 public:
  static constexpr std::size_t mostPoints = 64;

  /// A number and the event that has it. Of equal ones, the event with the lowest key.
  struct Extreme {
    double number = 0;
    long long event = 0;
    int store = 0;  ///< Of several stores.
  };

  void Add(double number, long long event);
  /// Counts a value that is no finite number.
  void AddOther() { ++others; }
  /// Adds what another cell has. @param store the number of its store.
  void Take(const TrendCell& other, int store = 0);
  /// Keeps `mostPoints` at most.
  void Settle();

  std::size_t Count() const { return count; }
  std::size_t Others() const { return others; }
  const Extreme& Lowest() const { return lowest; }
  const Extreme& Highest() const { return highest; }
  /// How many numbers are kept.
  std::size_t Points() const;
  /// By how many of the numbers, at most, the place of a quantile differs from where it should be.
  double Error() const { return error; }
  /// The quantiles of Store::Distribution. There must be a number.
  std::array<double, 5> Quantiles() const;

 private:
  /// Numbers that are kept, and how many each of them stands for.
  struct Kept {
    double weight = 1;
    std::vector<double> numbers = {};
  };
  class Places;
  void Meet(const Extreme& low, const Extreme& high);
  std::vector<double>& Of(double weight);

  std::size_t count = 0, others = 0;
  Extreme lowest, highest;
  std::vector<Kept> kept;
  double error = 0;
};

}  // namespace Velora::Ts
