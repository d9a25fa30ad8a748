#include "asking/TrendSources.h"

#include "store/reading/Reader.h"
#include "store/values/StoredTime.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

long long TimeReader::Of(std::string_view stored) {
  static constexpr std::string_view form = "2026-11-24T21:55:00.000000Z";
  static constexpr std::size_t seconds = 17;
  static constexpr std::array<long long, 9> units{10000000, 1000000, 0, 100000, 10000, 1000, 100, 10, 1};
  if (stored.size() != form.size() || !stored.ends_with('Z')) {
    return Microseconds(stored).value_or(0);
  }
  if (stored.substr(0, seconds) != minute) {
    const auto time = Microseconds(std::string(stored.substr(0, seconds)) + std::string(form.substr(seconds)));
    if (!time) {
      return 0;
    }
    minute = stored.substr(0, seconds);
    begin = *time;
  }
  long long at = begin;
  for (std::size_t place = 0; place < units.size(); ++place) {
    const int digit = stored[seconds + place] - (units[place] == 0 ? '.' : '0');
    if (digit < 0 || digit > (units[place] == 0 ? 0 : 9)) {
      return 0;
    }
    at += digit * units[place];
  }
  return at;
}

InstrumentFinder::InstrumentFinder(const Reader& store)
    : first(store,
            "SELECT MIN(o.session_id) FROM sessions n CROSS JOIN sessions o WHERE n.session_id = ?1 AND "
            "o.instrument = n.instrument") {}

long long InstrumentFinder::Of(long long session) {
  const auto [place, isNew] = known.try_emplace(session);
  if (isNew && first.Ask(session).Next() && !first.IsNull(0)) {
    place->second = first.Integer(0);
  }
  return place->second;
}

// A question to a server takes a round trip, so it is for many executions.
VersionFinder::VersionFinder(const Reader& store)
    : atOnce(store.Where().kind == Database::Kind::PostgreSql ? 1000 : 1),
      rows(store, "SELECT execution_id, parent_id, version_id FROM executions WHERE execution_id BETWEEN ?1 AND ?2") {}

const std::vector<long long>& VersionFinder::Of(long long execution) {
  Execution& place = PlaceOf(execution);
  if (place.key != execution) {
    place = {execution, Ask(execution)};
  }
  return place.versions;
}

std::optional<VersionFinder::Row> VersionFinder::RowOf(long long execution) {
  static constexpr std::size_t mostPortions = 30;
  const long long first = execution - execution % atOnce;
  if (!read.contains(first)) {
    if (read.size() == mostPortions) {
      read.clear();
    }
    std::map<long long, Row>& portion = read[first];
    for (rows.Ask(first, first + atOnce - 1); rows.Next();) {
      portion[rows.Integer(0)] = {rows.IsNull(1) ? 0 : rows.Integer(1), rows.IsNull(2) ? 0 : rows.Integer(2)};
    }
  }
  const std::map<long long, Row>& portion = read[first];
  const auto row = portion.find(execution);
  return row == portion.end() ? std::nullopt : std::optional(row->second);
}

// A parent has a lower key. What says otherwise is not followed, as in Store::WindowQuestion.
std::vector<long long> VersionFinder::Ask(long long execution) {
  std::vector<long long> versions;
  const auto add = [&versions](long long version) {
    if (versions.empty() || std::find(versions.begin(), versions.end(), version) == versions.end()) {
      versions.push_back(version);
    }
  };
  for (long long key = execution; key > 0;) {
    if (const Execution& above = PlaceOf(key); above.key == key) {
      std::for_each(above.versions.begin(), above.versions.end(), add);
      break;
    }
    const std::optional<Row> row = RowOf(key);
    if (!row) {
      break;
    }
    add(row->version);
    key = row->parent < key ? row->parent : 0;
  }
  versions.resize(std::max(versions.size(), std::size_t{1}));
  std::sort(versions.begin() + 1, versions.end());
  return versions;
}

}  // namespace Velora::Ts
