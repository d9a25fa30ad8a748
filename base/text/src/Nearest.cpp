#include <VeloraText/Nearest.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Velora::Text {

std::size_t Distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);  // distances of the beginnings of `other`
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t line = 0; line < one.size(); ++line) {
    std::size_t diagonal = std::exchange(row[0], line + 1);
    for (std::size_t place = 0; place < other.size(); ++place) {
      const std::size_t replaced = diagonal + (one[line] == other[place] ? 0 : 1);
      diagonal = row[place + 1];
      row[place + 1] = std::min({replaced, diagonal + 1, row[place] + 1});
    }
  }
  return row.back();
}

std::optional<std::string> Nearest(std::string_view given, const std::vector<std::string>& names) {
  std::optional<std::string> nearest;
  std::size_t limit = (given.size() + 2) / 3;  // farther ones have little in common
  for (const std::string& name : names) {
    const std::size_t distance = !given.empty() && name.starts_with(given) ? 1 : Distance(given, name);
    if (distance <= limit) {
      nearest = name;
      limit = std::max<std::size_t>(distance, 1) - 1;
    }
  }
  return nearest;
}

}  // namespace Velora::Text
