#include "asking/TrendReading.h"

#include "asking/TrendSources.h"
#include "store/reading/ParameterValue.h"
#include "store/values/StoredTime.h"

#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long parts = 500;

long long IntegerOr0(const Rows& rows, int column) { return rows.IsNull(column) ? 0 : rows.Integer(column); }

}  // namespace

std::optional<std::pair<long long, long long>> SpanOf(const Reader& store, const EventWindow& window) {
  Rows first(store, "SELECT at FROM events WHERE at >= ?1 AND at < ?2 ORDER BY at LIMIT 1");
  Rows last(store, "SELECT at FROM events WHERE at >= ?1 AND at < ?2 ORDER BY at DESC LIMIT 1");
  if (!first.Ask(window.from, window.before).Next() || !last.Ask(window.from, window.before).Next()) {
    return std::nullopt;
  }
  return std::pair(Microseconds(first.Text(0)).value_or(0), Microseconds(last.Text(0)).value_or(0));
}

TrendSummary ReadWindow(const Reader& store, const EventWindow& window, const std::string& parameter) {
  enum Column { At = 5, Session, Version, Event };
  const auto span = SpanOf(store, window);
  TrendSummary summary(span ? span->second - span->first : 0, parts);
  InstrumentFinder instruments(store);
  const WindowQuestion question(store, window);
  Rows rows = question.Parameters(
      "p.position, p.name, p.kind, p.value_text, p.value_number, v.at, v.session_id, x.version_id, v.event_id",
      "LEFT JOIN executions x ON x.execution_id = v.execution_id",
      " AND p.name = ?" + std::to_string(WindowQuestion::firstOwn));
  for (rows.Ask(question.Values({parameter})); rows.Next();) {
    const long long at = Microseconds(rows.Text(At)).value_or(0);
    const int source = summary.NumberOf({instruments.Of(rows.Integer(Session)), {IntegerOr0(rows, Version)}});
    const std::optional<double> number = NumberOf(rows);
    if (number && std::isfinite(*number)) {
      summary.Add(at, source, *number, rows.Integer(Event));
    } else {
      summary.AddOther(at, source);
    }
  }
  return summary;
}

}  // namespace Velora::Ts
