#include "asking/NumbersInTime.h"

#include <utility>

namespace Velora::Ts {

void NumbersInTime::Extremes::Take(const Extremes& other) {
  if (other.lowest.number < lowest.number) {
    lowest = other.lowest;
  }
  if (other.highest.number > highest.number) {
    highest = other.highest;
  }
}

void NumbersInTime::Add(const NumberInTime& added) {
  ++count;
  Put(added.at >> width, {added, added});
  while (slices.size() > mostSlices) {
    DoubleSlices();
  }
}

std::vector<NumberInTime> NumbersInTime::Kept() const {
  std::vector<NumberInTime> kept;
  kept.reserve(2 * slices.size());
  for (const auto& [slice, extremes] : slices) {
    NumberInTime one = extremes.lowest, other = extremes.highest;
    if (other.at < one.at) {
      std::swap(one, other);
    }
    kept.push_back(one);
    if (other.event != one.event) {
      kept.push_back(other);
    }
  }
  return kept;
}

void NumbersInTime::Put(long long slice, const Extremes& extremes) {
  const auto [place, isNew] = slices.emplace(slice, extremes);
  if (!isNew) {
    place->second.Take(extremes);
  }
}

void NumbersInTime::DoubleSlices() {
  ++width;
  for (const auto& [slice, extremes] : std::exchange(slices, {})) {
    Put(slice >> 1, extremes);
  }
}

}  // namespace Velora::Ts
