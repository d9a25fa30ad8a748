#include "exporting/ParameterColumns.h"

#include <algorithm>
#include <stdexcept>

namespace Velora::Ts {

// Until Arrange(), the column of a new occurrence is its number in `fresh`, counted behind the columns that exist.
void ParameterColumns::Learn(std::string_view text, const Place& place) {
  auto found = names.find(text);
  if (found == names.end()) {
    found = names.emplace(text, Name()).first;
  }
  Name& name = found->second;
  const std::size_t occurrence = Meet(name);
  if (occurrence == name.columns.size()) {
    name.columns.push_back(count + fresh.size());
    fresh.push_back({place, &*found, occurrence});
  } else if (const std::size_t column = name.columns[occurrence]; column >= count) {
    fresh[column - count].first = std::min(fresh[column - count].first, place);
  }
}

void ParameterColumns::Arrange(const std::function<void(const std::string& name, int occurrence)>& added) {
  std::sort(fresh.begin(), fresh.end(), [](const New& one, const New& other) { return one.first < other.first; });
  for (const New& column : fresh) {
    column.name->second.columns[column.occurrence] = count++;
    added(column.name->first, static_cast<int>(column.occurrence) + 1);
  }
  fresh.clear();
}

std::size_t ParameterColumns::Of(std::string_view text) {
  const auto found = names.find(text);
  if (found == names.end()) {
    throw std::out_of_range("a parameter without a column");
  }
  return found->second.columns.at(Meet(found->second));
}

std::size_t ParameterColumns::Meet(Name& name) const {
  if (name.event != event) {
    name.event = event;
    name.met = 0;
  }
  return name.met++;
}

}  // namespace Velora::Ts
