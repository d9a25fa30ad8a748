#include "asking/TrendReading.h"

#include "asking/TrendSources.h"
#include "store/reading/ParameterValue.h"
#include "store/values/StoredTime.h"

#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

long long IntegerOr0(const Rows& rows, int column) { return rows.IsNull(column) ? 0 : rows.Integer(column); }

/// Counts the value of a parameter.
void AddValue(TrendSummary& summary, long long at, int source, const Rows& parameter, long long event) {
  const std::optional<double> number = NumberOf(parameter);
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
    AddValue(summary, times.Of(rows.Text(At)), source, rows, rows.Integer(Event));
  }
  return summary;
}

void ReadKeys(const Reader& store, const KeyRange& keys, const std::string& parameter, TrendSummary& summary) {
  enum Column { Event = 5, At, Session, Execution };
  TimeReader times;
  SourceFinder sources(store, summary);
  const std::string between = " BETWEEN " + std::to_string(keys.after + 1) + " AND " + std::to_string(keys.upTo);
  Rows rows(store,
            "SELECT p.position, '', p.kind, p.value_text, p.value_number, v.event_id, v.at, v.session_id, "
            "v.execution_id FROM parameters p CROSS JOIN events v WHERE v.event_id" +
                between + " AND p.event_id" + between + " AND p.event_id = v.event_id AND p.name = ?1");
  for (rows.Ask(parameter); rows.Next();) {
    const int source = sources.Of(rows.Integer(Session), IntegerOr0(rows, Execution));
    AddValue(summary, times.Of(rows.Text(At)), source, rows, rows.Integer(Event));
  }
}

}  // namespace Velora::Ts
