#include "store/asking/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velora::Store {

void Numbers::Take(Numbers& others) {
  for (; !others.numbers.empty(); others.numbers.pop_back()) {
    numbers.push_back(others.numbers.back());
  }
}

// The sums have more digits than the numbers, so that they neither overflow nor lose what is small.
Distribution Numbers::Summarize() {
  Distribution distribution;
  distribution.count = numbers.size();
  if (numbers.empty()) {
    return distribution;
  }
  std::sort(numbers.begin(), numbers.end());
  distribution.lowest = numbers.front();
  distribution.highest = numbers.back();
  for (std::size_t number = 0; number < Distribution::parts.size(); ++number) {
    const double place = Distribution::parts[number] * static_cast<double>(numbers.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const double above = numbers[std::min(below + 1, numbers.size() - 1)];
    distribution.quantiles[number] = std::lerp(numbers[below], above, place - std::floor(place));
  }
  const auto count = static_cast<long double>(numbers.size());
  long double sum = 0;
  for (const double number : numbers) {
    sum += number;
  }
  const long double mean = sum / count;
  long double squares = 0;
  for (const double number : numbers) {
    squares += (number - mean) * (number - mean);
  }
  distribution.mean = static_cast<double>(mean);
  distribution.deviation = numbers.size() > 1 ? static_cast<double>(std::sqrt(squares / (count - 1)))
                                              : std::numeric_limits<double>::quiet_NaN();
  return distribution;
}

}  // namespace Velora::Store
