#pragma once

#include <array>
#include <cstddef>
#include <deque>

namespace Velora::Store {

/// What numbers are like.
struct Distribution {
  /// The parts of the numbers below the quantiles.
  static constexpr std::array parts = {0.05, 0.25, 0.5, 0.75, 0.95};
  static constexpr std::size_t median = 2;  ///< Which of them is the median.

  std::size_t count = 0;
  double lowest = 0, highest = 0;
  /// Between two numbers, a quantile is on the line between them.
  std::array<double, parts.size()> quantiles{};
  double mean = 0;
  double deviation = 0;  ///< The standard deviation of a sample; NaN of one number.
};

/// Finite numbers, of which all are kept, with eight bytes for each, so that quantiles are exact.
class Numbers {
 public:
  void Add(double number) { numbers.push_back(number); }
  /// Adds other numbers, and leaves none there.
  void Take(Numbers& others);
  std::size_t Count() const { return numbers.size(); }
  double operator[](std::size_t place) const { return numbers[place]; }

  /// Sorts the numbers and says what they are like.
  Distribution Summarize();

 private:
  std::deque<double> numbers;  // which grows without a copy
};

}  // namespace Velora::Store
