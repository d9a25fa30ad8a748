#include "asking/TrendSummary.h"

#include <algorithm>
#include <array>

namespace Velora::Ts {

namespace {

constexpr std::size_t mostCells = 20000, mostPoints = 200000;

constexpr long long second = 1000000, hour = 3600 * second, day = 24 * hour;
constexpr std::array widths = {second / 1000, second / 100, second / 10, second,      5 * second,
                               15 * second,   60 * second,  hour / 12,   hour / 4,    hour,
                               3 * hour,      6 * hour,     12 * hour,   day,         7 * day,
                               28 * day,      364 * day,    3640 * day,  36400 * day, 3640000 * day};

}  // namespace

long long PartOf(long long at, long long width) { return at / width - (at % width < 0 ? 1 : 0); }

TrendSummary::TrendSummary(long long span, long long parts)
    : width(*std::find_if(widths.begin(), widths.end() - 1, [&](long long one) { return span / one < parts; })) {}

int TrendSummary::NumberOf(const TrendSource& source) {
  if (const auto known = numbers.find(source); known != numbers.end()) {
    return known->second;
  }
  if (sources.size() > mostSources || source.versions.size() > TrendSource::mostVersions) {
    isWhole = false;
    return 0;
  }
  sources.push_back(source);
  return numbers[source] = static_cast<int>(sources.size()) - 1;
}

TrendCell& TrendSummary::CellOf(const Place& place) {
  if (lastCell == nullptr || place != last) {
    last = place;
    lastCell = &cells[place];
  }
  return *lastCell;
}

void TrendSummary::Add(long long at, int source, double number, long long event) {
  CellOf({PartOf(at, width), source}).Add(number, event);
  if (++points > mostPoints || cells.size() > mostCells) {
    Limit();
  }
}

void TrendSummary::AddOther(long long at, int source) {
  CellOf({PartOf(at, width), source}).AddOther();
  if (cells.size() > mostCells) {
    Limit();
  }
}

void TrendSummary::Take(const TrendSummary& other) {
  if (other.width > width) {
    Widen(other.width);
  }
  isWhole = isWhole && other.isWhole;
  std::vector<int> here(other.sources.size());
  for (std::size_t source = 1; source < here.size(); ++source) {
    here[source] = NumberOf(other.sources[source]);
  }
  for (const auto& [place, cell] : other.cells) {
    CellOf({PartOf(place.first * other.width, width), here[static_cast<std::size_t>(place.second)]}).Take(cell);
    points += cell.Points();
  }
  Limit();
}

// Less than what may be kept, so that it is long until the next time.
void TrendSummary::Limit() {
  if (points <= mostPoints && cells.size() <= mostCells) {
    return;
  }
  points = Settle();
  while ((points > mostPoints / 4 * 3 || cells.size() > mostCells / 4 * 3) && width != widths.back()) {
    Widen(*std::upper_bound(widths.begin(), widths.end(), width));
    points = Settle();
  }
}

void TrendSummary::Widen(long long wider) {
  Cells joined;
  for (const auto& [place, cell] : cells) {
    joined[{PartOf(place.first * width, wider), place.second}].Take(cell);
  }
  cells = std::move(joined);
  lastCell = nullptr;
  width = wider;
}

std::size_t TrendSummary::Settle() {
  std::size_t kept = 0;
  for (auto& [place, cell] : cells) {
    cell.Settle();
    kept += cell.Points();
  }
  return kept;
}

}  // namespace Velora::Ts
