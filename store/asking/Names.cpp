#include "store/asking/Names.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"

#include <VeloraText/Nearest.h>

#include <algorithm>
#include <cctype>
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

}  // namespace

std::optional<std::string> NewestTimeOf(const Reader& store, Named kind, const std::string& name) {
  Rows newest(store, kind == Named::Event
                         ? "SELECT at FROM events WHERE name = ?1 ORDER BY at DESC LIMIT 1"
                         : "SELECT v.at FROM events v CROSS JOIN parameters p WHERE p.event_id = v.event_id AND "
                           "p.name = ?1 ORDER BY v.at DESC LIMIT 1");
  return newest.Ask(name).Next() ? std::optional(std::string(newest.Text(0))) : std::nullopt;
}

std::vector<std::string> NearestNames(const Reader& store, Named kind, const std::string& name) {
  const std::string wanted = Comparable(name);
  std::vector<std::pair<std::size_t, std::string>> nearest;
  for (Rows names(store,
                  kind == Named::Event ? "SELECT DISTINCT name FROM events" : "SELECT DISTINCT name FROM parameters");
       names.Next();) {
    nearest.emplace_back(Velora::Text::Distance(wanted, Comparable(names.Whole(0))), names.Whole(0));
    std::sort(nearest.begin(), nearest.end());
    nearest.resize(std::min(nearest.size(), mostNearest));
  }
  std::vector<std::string> found;
  found.reserve(nearest.size());
  for (auto& [distance, one] : nearest) {
    found.push_back(std::move(one));
  }
  return found;
}

}  // namespace Velora::Store
