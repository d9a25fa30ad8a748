#include "store/asking/Names.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace Velora::Store {

namespace {

constexpr std::size_t mostNearest = 3;
constexpr std::size_t longestCompared = 200;  // bytes; the time grows with the square

/// Names in other letters are near, but not the same.
std::string Comparable(std::string_view name) {
  std::string letters(name.substr(0, longestCompared));
  std::transform(letters.begin(), letters.end(), letters.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return letters;
}

/// How many characters must be put in, left out or replaced to make one text from another.
std::size_t Distance(const std::string& one, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), 0);
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

}  // namespace

std::optional<std::string> NewestTimeOf(const Reader& store, Named kind, const std::string& name) {
  Rows newest(store, kind == Named::Event
                         ? "SELECT at FROM events WHERE name = ?1 ORDER BY event_id DESC LIMIT 1"
                         : "SELECT v.at FROM parameters p JOIN events v ON v.event_id = p.event_id WHERE p.name = ?1 "
                           "ORDER BY p.event_id DESC LIMIT 1");
  return newest.Ask(name).Next() ? std::optional(std::string(newest.Text(0))) : std::nullopt;
}

std::vector<std::string> NearestNames(const Reader& store, Named kind, const std::string& name) {
  const std::string wanted = Comparable(name);
  std::vector<std::pair<std::size_t, std::string>> nearest;
  for (Rows names(store,
                  kind == Named::Event ? "SELECT DISTINCT name FROM events" : "SELECT DISTINCT name FROM parameters");
       names.Next();) {
    nearest.emplace_back(Distance(wanted, Comparable(names.Whole(0))), names.Whole(0));
    std::sort(nearest.begin(), nearest.end());
    nearest.resize(std::min(nearest.size(), mostNearest));
  }
  std::vector<std::string> found;
  for (auto& [distance, one] : nearest) {
    found.push_back(std::move(one));
  }
  return found;
}

}  // namespace Velora::Store
