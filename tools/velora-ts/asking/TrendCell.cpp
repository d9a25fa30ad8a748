#include "asking/TrendCell.h"

#include <algorithm>
#include <tuple>

namespace Velora::Ts {

using namespace Store;

void TrendCell::Meet(const Extreme& low, const Extreme& high) {
  const auto before = [](const Extreme& one, const Extreme& other) {
    return std::tie(one.store, one.event) < std::tie(other.store, other.event);
  };
  if (count == 0 || low.number < lowest.number || (low.number == lowest.number && before(low, lowest))) {
    lowest = low;
  }
  if (count == 0 || high.number > highest.number || (high.number == highest.number && before(high, highest))) {
    highest = high;
  }
}

void TrendCell::Add(double number, long long event) {
  const Extreme extreme{number, event};
  Meet(extreme, extreme);
  ++count;
  points.emplace_back(number, 1);
}

void TrendCell::Take(const TrendCell& other, int store) {
  others += other.others;
  if (other.count == 0) {
    return;
  }
  Meet({other.lowest.number, other.lowest.event, store}, {other.highest.number, other.highest.event, store});
  count += other.count;
  error += other.error;
  points.insert(points.end(), other.points.begin(), other.points.end());
}

// The middle of a part stands for all of it, so no place of a number moves by more than half a part.
void TrendCell::Settle() {
  if (points.size() <= mostPoints) {
    return;
  }
  const std::vector<Weighted> sorted = Sorted();
  const double part = static_cast<double>(count) / mostPoints;
  std::vector<Weighted> settled;
  settled.reserve(mostPoints);
  double passed = 0;
  for (const auto& [number, weight] : sorted) {
    passed += weight;
    while (settled.size() < mostPoints && (static_cast<double>(settled.size()) + 0.5) * part < passed) {
      settled.emplace_back(number, part);
    }
  }
  settled.resize(mostPoints, {sorted.back().first, part});  // where sums of weights are rounded
  error += part / 2;
  points = std::move(settled);
}

std::vector<Weighted> TrendCell::Sorted() const {
  std::vector<Weighted> sorted = points;
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

decltype(Distribution::quantiles) TrendCell::Quantiles() const {
  if (error == 0) {
    Numbers numbers;
    for (const auto& [number, weight] : points) {
      numbers.Add(number);
    }
    return numbers.Summarize().quantiles;
  }
  const std::vector<Weighted> sorted = Sorted();
  decltype(Distribution::quantiles) quantiles{};
  std::size_t at = 0;
  double passed = sorted.front().second;
  for (std::size_t number = 0; number < quantiles.size(); ++number) {
    for (const double place = Distribution::parts[number] * static_cast<double>(count - 1);
         passed <= place && at + 1 < sorted.size(); passed += sorted[at].second) {
      ++at;
    }
    quantiles[number] = sorted[at].first;
  }
  return quantiles;
}

}  // namespace Velora::Ts
