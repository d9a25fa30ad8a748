#include "asking/TrendReading.h"

#include "asking/TrendSources.h"
#include "store/reading/ParameterValue.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

long long IntegerOr0(const Rows& rows, int column) { return rows.IsNull(column) ? 0 : rows.Integer(column); }

/// Counts a value, if it is a number.
void AddValue(TrendSummary& summary, long long at, int source, std::optional<double> number, long long event) {
  if (number && std::isfinite(*number)) {
    summary.Add(at, source, *number, event);
  } else {
    summary.AddOther(at, source);
  }
}

}  // namespace

TrendSummary SummaryFor(const Reader& store, const EventWindow& window) {
  static constexpr long long parts = 500;
  Rows first(store, "SELECT at FROM events WHERE at >= ?1 AND at < ?2 ORDER BY at LIMIT 1");
  Rows last(store, "SELECT at FROM events WHERE at >= ?1 AND at < ?2 ORDER BY at DESC LIMIT 1");
  if (!first.Ask(window.from, window.before).Next() || !last.Ask(window.from, window.before).Next()) {
    return {0, parts};
  }
  return {Microseconds(last.Text(0)).value_or(0) - Microseconds(first.Text(0)).value_or(0), parts};
}

TrendSummary ReadWindow(const Reader& store, const EventWindow& window, const std::string& parameter) {
  enum Column { At = 5, Session, Version, Event };
  TrendSummary summary = SummaryFor(store, window);
  TimeReader times;
  InstrumentFinder instruments(store);
  const WindowQuestion question(store, window);
  Rows rows = question.Parameters(
      "p.position, p.name, p.kind, p.value_text, p.value_number, v.at, v.session_id, x.version_id, v.event_id",
      "LEFT JOIN executions x ON x.execution_id = v.execution_id",
      " AND p.name = ?" + std::to_string(WindowQuestion::firstOwn));
  for (rows.Ask(question.Values({parameter})); rows.Next();) {
    const int source = summary.NumberOf({instruments.Of(rows.Integer(Session)), {IntegerOr0(rows, Version)}});
    AddValue(summary, times.Of(rows.Text(At)), source, NumberOf(rows), rows.Integer(Event));
  }
  return summary;
}

namespace {

/// How many characters of a stored time say in which cell it is.
std::size_t PlacesOfCell(long long width) {
  static constexpr long long second = 1000000, minute = 60 * second, hour = 60 * minute, day = 24 * hour;
  return width >= day ? 10 : width >= hour ? 13 : width >= minute ? 16 : width >= second ? 19 : 23;
}

/// Goes through the elements of an array of numbers, as a server writes it.
class ArrayOfNumbers {
 public:
  explicit ArrayOfNumbers(std::string_view text) : rest(text) {}

  template <typename Number>
  Number Next() {
    rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
    Number number{};
    const char* const end = std::from_chars(rest.data(), rest.data() + rest.size(), number).ptr;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return number;
  }

 private:
  std::string_view rest;  // from the brace or comma before the next element
};

}  // namespace

void KeysReader::Read(const KeyRange& keys) {
  if (store.Where().kind == Database::Kind::PostgreSql) {
    ReadServer(keys);
  } else {
    ReadFile(keys);
  }
}

void KeysReader::ReadFile(const KeyRange& keys) {
  enum Column { Event = 5, At, Session, Execution };
  Rows rows(store,
            "SELECT p.position, '', p.kind, p.value_text, p.value_number, v.event_id, v.at, v.session_id, "
            "v.execution_id FROM parameters p CROSS JOIN events v WHERE p.event_id > ?1 AND p.event_id <= ?2 AND "
            "p.name = ?3 AND v.event_id = p.event_id");
  for (rows.Ask(keys.after, keys.upTo, parameter); rows.Next();) {
    const int source = sources.Of(rows.Integer(Session), IntegerOr0(rows, Execution));
    AddValue(summary, times.Of(rows.Text(At)), source, NumberOf(rows), rows.Integer(Event));
  }
}

// A server puts the numbers of a cell together: most of the time went into rows of one number each. Without the
// setting, it would sort them.
void KeysReader::ReadServer(const KeyRange& keys) {
  const std::string first = std::to_string(keys.after + 1);
  const std::string between = " BETWEEN " + first + " AND " + std::to_string(keys.upTo);
  Rows executions(store,
                  "SELECT COALESCE(MIN(execution_id + 0), 0), COALESCE(MAX(execution_id + 0), 0) FROM events v WHERE "
                  "v.event_id" +
                      between);
  executions.Next();
  sources.ReadAbove(executions.Integer(0), executions.Integer(1));
  store.Sql().RunScript("SET LOCAL enable_sort = off");
  Rows groups(
      store,
      "SELECT 0, '', kind, value_text, CASE WHEN NOT is_plain THEN value_number END, is_plain, part, session_id, "
      "version_id, parent_id, COUNT(*), array_agg(value_number), array_agg(event_id - " +
          first +
          ") FROM (SELECT p.kind, p.value_text, p.value_number, v.event_id, v.session_id, x.version_id, x.parent_id, "
          "substr(v.at, 1, " +
          std::to_string(PlacesOfCell(summary.Width())) +
          ") AS part, p.value_text IS NULL AND p.value_number IS NOT NULL AND p.kind <> 'bool' AS is_plain FROM "
          "events v CROSS JOIN parameters p LEFT JOIN executions x ON x.execution_id = v.execution_id AND "
          "x.execution_id BETWEEN " +
          std::to_string(executions.Integer(0)) + " AND " + std::to_string(executions.Integer(1)) +
          " WHERE v.event_id" + between + " AND p.event_id" + between +
          " AND p.event_id = v.event_id AND p.name = ?1) each GROUP BY kind, value_text, CASE WHEN NOT is_plain THEN "
          "value_number END, is_plain, part, session_id, version_id, parent_id");
  groups.Ask(parameter);
  ReadGroups(groups, keys.after + 1);
  store.Sql().RunScript("SET LOCAL enable_sort = on");
}

/// @param first the key from which those of the events are counted.
void KeysReader::ReadGroups(Rows& groups, long long first) {
  enum Column { IsPlain = 5, At, Session, Version, Parent, Count, Numbers, Events };
  while (groups.Next()) {
    const int source = sources.Below(groups.Integer(Session), IntegerOr0(groups, Parent), IntegerOr0(groups, Version));
    const long long at = Microseconds(groups.Text(At)).value_or(0);
    const bool isPlain = groups.Integer(IsPlain) == 1;
    const std::optional<double> number = isPlain ? std::nullopt : NumberOf(groups);
    ArrayOfNumbers numbers(groups.Whole(Numbers)), events(groups.Whole(Events));
    for (long long left = groups.Integer(Count); left > 0; --left) {
      const long long event = first + events.Next<long long>();
      AddValue(summary, at, source, isPlain ? numbers.Next<double>() : number, event);
    }
  }
}

}  // namespace Velora::Ts
