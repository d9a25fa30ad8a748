#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Velora::Store {

/// Two items of two sequences that belong together.
struct Match {
  std::size_t first, second;  ///< Their places, from 0.
  bool moved = false;         ///< Whether they do not stand in the order of the others.
};

/// How different two items of the same key are, from 0 to 1.
using Distance = std::function<double(std::size_t first, std::size_t second)>;

/// The most items of one key, or between two matches, of which values decide which belong together.
inline constexpr std::size_t mostWeighed = 256;

/// Matches items of the same key, each at most once. Of a key that both sequences have equally often, the n-th matches
/// the n-th. Where one has more of a key, those stay alone that make the others least different; the last ones, if
/// that makes hardly a difference, or of more than `mostWeighed`.
/// @return the matches in the order of the first sequence.
std::vector<Match> Align(const std::vector<std::size_t>& first, const std::vector<std::size_t>& second,
                         const Distance& distance);

/// The cheapest way through two sequences that matches items in order or leaves them alone.
/// @param cost of a match; nothing if these items cannot match.
/// @param alone the cost of an item that stays alone.
/// @param open whether the sequences go on, so that what is left of one of them at the end costs nothing.
std::vector<Match> CheapestWay(std::size_t first, std::size_t second,
                               const std::function<std::optional<double>(std::size_t, std::size_t)>& cost, double alone,
                               bool open);

}  // namespace Velora::Store
