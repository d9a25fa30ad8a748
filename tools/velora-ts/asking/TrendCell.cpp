#include "asking/TrendCell.h"

#include "store/asking/Numbers.h"

#include <algorithm>
#include <tuple>
#include <utility>

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

std::vector<double>& TrendCell::Of(double weight) {
  for (Kept& some : kept) {
    if (some.weight == weight) {
      return some.numbers;
    }
  }
  return kept.emplace_back(Kept{weight}).numbers;
}

std::size_t TrendCell::Points() const {
  std::size_t points = 0;
  for (const Kept& some : kept) {
    points += some.numbers.size();
  }
  return points;
}

void TrendCell::Add(double number, long long event) {
  const Extreme extreme{number, event};
  Meet(extreme, extreme);
  ++count;
  Of(1).push_back(number);
}

void TrendCell::Take(const TrendCell& other, int store) {
  others += other.others;
  if (other.count == 0) {
    return;
  }
  Meet({other.lowest.number, other.lowest.event, store}, {other.highest.number, other.highest.event, store});
  count += other.count;
  error += other.error;
  for (const Kept& some : other.kept) {
    std::vector<double>& numbers = Of(some.weight);
    numbers.insert(numbers.end(), some.numbers.begin(), some.numbers.end());
  }
}

/// Goes through numbers in their order, by how many are before.
class TrendCell::Places {
 public:
  explicit Places(const TrendCell& cell) {
    for (const Kept& some : cell.kept) {
      for (const double number : some.numbers) {
        sorted.emplace_back(number, some.weight);
      }
    }
    std::sort(sorted.begin(), sorted.end());
    passed = sorted.front().second;
  }

  /// The number at a place that is not before the last one.
  double At(double place) {
    for (; passed <= place && at + 1 < sorted.size(); passed += sorted[at].second) {
      ++at;
    }
    return sorted[at].first;
  }

 private:
  std::vector<std::pair<double, double>> sorted;  // with their weights
  std::size_t at = 0;
  double passed = 0;  // the numbers up to the current one
};

// The middle of a part stands for all of it, so no place of a number moves by more than half a part.
void TrendCell::Settle() {
  if (Points() <= mostPoints) {
    return;
  }
  const double part = static_cast<double>(count) / mostPoints;
  Kept settled{part};
  settled.numbers.reserve(mostPoints);
  Places places(*this);
  for (std::size_t number = 0; number < mostPoints; ++number) {
    settled.numbers.push_back(places.At((static_cast<double>(number) + 0.5) * part));
  }
  error += part / 2;
  kept.clear();  // an assignment would keep the room that they had
  kept.push_back(std::move(settled));
}

std::array<double, 5> TrendCell::Quantiles() const {
  if (error == 0) {
    Numbers numbers;
    for (const Kept& some : kept) {
      std::for_each(some.numbers.begin(), some.numbers.end(), [&](double number) { numbers.Add(number); });
    }
    return numbers.Summarize().quantiles;
  }
  Places places(*this);
  std::array<double, Distribution::parts.size()> quantiles{};
  for (std::size_t number = 0; number < quantiles.size(); ++number) {
    quantiles[number] = places.At(Distribution::parts[number] * static_cast<double>(count - 1));
  }
  return quantiles;
}

}  // namespace Velora::Ts
