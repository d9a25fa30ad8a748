#include "asking/TrendSources.h"

#include "store/reading/Reader.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <iterator>

namespace Velora::Ts {

using namespace Store;

namespace {

/// The number of some digits; a high one if there are others.
long long NumberAt(std::string_view text, std::size_t from, std::size_t count) {
  static constexpr long long none = 1000000000;
  long long number = 0;
  for (const char character : text.substr(from, count)) {
    number = character >= '0' && character <= '9' ? number * 10 + (character - '0') : none;
  }
  return number;
}

}  // namespace

long long TimeReader::Of(std::string_view stored) {
  static constexpr std::string_view form = "2026-11-24T21:55:03.123456Z";
  static constexpr std::size_t clock = form.find('T') + 1;
  static constexpr long long second = 1000000, minute = 60 * second, hour = 60 * minute;
  if (stored.size() != form.size() || stored[13] != ':' || stored[16] != ':' || stored[19] != '.' ||
      stored.back() != 'Z') {
    return Microseconds(stored).value_or(0);
  }
  if (stored.substr(0, clock) != day) {
    const auto time = Microseconds(std::string(stored.substr(0, clock)) + "00:00:00.000000Z");
    if (!time) {
      return 0;
    }
    day = stored.substr(0, clock);
    begin = *time;
  }
  const long long hours = NumberAt(stored, clock, 2), minutes = NumberAt(stored, 14, 2),
                  seconds = NumberAt(stored, 17, 2), rest = NumberAt(stored, 20, 6);
  if (hours > 23 || minutes > 59 || seconds > 59 || rest >= second) {
    return Microseconds(stored).value_or(0);
  }
  return begin + hours * hour + minutes * minute + seconds * second + rest;
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

namespace {

// Executions are read in portions, because neighbours mostly are needed soon after each other.
constexpr long long atOnce = 1000;

const std::vector<long long> noVersions;

}  // namespace

SourceFinder::SourceFinder(const Reader& store, TrendSummary& summary)
    : store(store),
      summary(summary),
      instruments(store),
      rows(store, "SELECT execution_id, parent_id, version_id FROM executions WHERE execution_id BETWEEN ?1 AND ?2"),
      tooMany(*lists.emplace(TrendSource::mostVersions + 1).first) {}

int SourceFinder::NumberOf(long long session, const Versions& versions) {
  const long long instrument = instruments.Of(session);
  const auto [number, isNew] = numbers.try_emplace({instrument, &versions});
  if (isNew) {
    number->second = summary.NumberOf({instrument, versions});
  }
  return number->second;
}

int SourceFinder::Of(long long session, long long execution) {
  if (session != lastSession || execution != lastExecution) {
    lastNumber = NumberOf(session, VersionsOf(execution));
    lastSession = session;
    lastExecution = execution;
  }
  return lastNumber;
}

void SourceFinder::ReadAbove(long long first, long long last) {
  readAbove.clear();
  Rows found(store,
             "WITH RECURSIVE above(execution_id) AS (SELECT DISTINCT parent_id FROM executions WHERE execution_id "
             "BETWEEN ?1 AND ?2 UNION SELECT (SELECT x.parent_id FROM executions x WHERE x.execution_id = "
             "above.execution_id AND x.parent_id < x.execution_id) FROM above WHERE above.execution_id IS NOT NULL) "
             "SELECT x.execution_id, x.parent_id, x.version_id FROM executions x WHERE x.execution_id = "
             "ANY (ARRAY(SELECT execution_id FROM above)) ORDER BY x.execution_id");
  for (found.Ask(first, last); found.Next();) {
    const auto parent = found.IsNull(1) ? readAbove.end() : readAbove.find(found.Integer(1));
    readAbove[found.Integer(0)] =
        &Joined(parent == readAbove.end() ? noVersions : *parent->second, found.IsNull(2) ? 0 : found.Integer(2));
  }
}

int SourceFinder::Below(long long session, long long parent, long long version) {
  const auto place = readAbove.find(parent);
  return NumberOf(session, Joined(place == readAbove.end() ? noVersions : *place->second, version));
}

const SourceFinder::Row& SourceFinder::RowOf(long long execution) {
  static constexpr std::size_t mostPortions = 30;
  static constexpr Row none;
  const long long first = execution - execution % atOnce;
  auto portion = read.find(first);
  if (portion == read.end()) {
    if (read.size() == mostPortions) {
      read.clear();
    }
    portion = read.emplace(first, atOnce).first;
    for (rows.Ask(first, first + atOnce - 1); rows.Next();) {
      const long long key = rows.Integer(0);
      portion->second[static_cast<std::size_t>(key - first)] = {key, rows.IsNull(1) ? 0 : rows.Integer(1),
                                                                rows.IsNull(2) ? 0 : rows.Integer(2)};
    }
  }
  const Row& row = portion->second[static_cast<std::size_t>(execution - first)];
  return row.key == execution ? row : none;
}

const SourceFinder::Versions& SourceFinder::Joined(const Versions& above, long long version) {
  static constexpr std::size_t mostLists = 10 * TrendSummary::mostSources;
  if (lists.size() > mostLists || above.size() > TrendSource::mostVersions) {
    return tooMany;
  }
  Versions versions{version};
  std::remove_copy(above.begin(), above.end(), std::back_inserter(versions), version);
  std::sort(versions.begin() + 1, versions.end());
  return *lists.insert(std::move(versions)).first;
}

// A parent has a lower key. What says otherwise is not followed, as in Store::WindowQuestion.
const SourceFinder::Versions& SourceFinder::VersionsOf(long long execution) {
  static constexpr std::size_t deepest = 1000;
  const Versions* versions = &noVersions;
  std::vector<Row> path;
  for (long long key = execution; key > 0;) {
    if (const Execution& above = PlaceOf(key); above.key == key) {
      versions = above.versions;
      break;
    }
    const Row& row = RowOf(key);
    if (row.key == 0) {
      break;
    }
    if (path.size() == deepest) {
      return tooMany;
    }
    path.push_back(row);
    key = row.parent < key ? row.parent : 0;
  }
  if (path.empty() && versions == &noVersions) {
    return Joined(noVersions, 0);
  }
  for (; !path.empty(); path.pop_back()) {
    versions = &Joined(*versions, path.back().version);
    PlaceOf(path.back().key) = {path.back().key, versions};
  }
  return *versions;
}

}  // namespace Velora::Ts
