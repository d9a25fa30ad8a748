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

/// Goes through the events of a file in the order of their keys, beside their parameters.
class EventWalk {
 public:
  EventWalk(const Reader& store, TrendSummary& summary)
      : summary(summary),
        events(store,
               "SELECT event_id, session_id, execution_id, at FROM events WHERE event_id >= ?1 ORDER BY event_id"),
        instruments(store),
        versions(store) {}

  /// Goes to an event that is behind the current one, or is it.
  void To(long long event) {
    if (event == key) {
      return;
    }
    for (int steps = key == 0 ? mostSteps : 0; key != event; ++steps) {
      if (steps == mostSteps) {
        events.Ask(event);
      }
      key = events.Next() && events.Integer(0) < event ? events.Integer(0) : event;
    }
    at = times.Of(events.Text(At));
    const long long ofSession = events.Integer(Session), ofExecution = IntegerOr0(events, Execution);
    if (ofSession != session || ofExecution != execution) {
      session = ofSession;
      execution = ofExecution;
      source = summary.NumberOf({instruments.Of(session), versions.Of(execution)});
    }
  }

  long long Time() const { return at; }
  int Source() const { return source; }

 private:
  enum Column { Session = 1, Execution, At };
  static constexpr int mostSteps = 30;  // that are quicker than finding a key

  TrendSummary& summary;
  Rows events;
  TimeReader times;
  InstrumentFinder instruments;
  VersionFinder versions;
  long long key = 0, session = -1, execution = -1, at = 0;
  int source = 0;
};

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

namespace {

void ReadKeysOfServer(const Reader& store, const KeyRange& keys, const std::string& parameter, TrendSummary& summary) {
  enum Column { Event = 5, At, Session, Execution };
  TimeReader times;
  InstrumentFinder instruments(store);
  VersionFinder versions(store);
  const std::string between = " BETWEEN " + std::to_string(keys.after + 1) + " AND " + std::to_string(keys.upTo);
  Rows rows(store,
            "SELECT p.position, '', p.kind, p.value_text, p.value_number, v.event_id, v.at, v.session_id, "
            "v.execution_id FROM events v CROSS JOIN parameters p WHERE v.event_id" +
                between + " AND p.event_id" + between + " AND p.event_id = v.event_id AND p.name = ?1");
  for (rows.Ask(parameter); rows.Next();) {
    const int source =
        summary.NumberOf({instruments.Of(rows.Integer(Session)), versions.Of(IntegerOr0(rows, Execution))});
    AddValue(summary, times.Of(rows.Text(At)), source, rows, rows.Integer(Event));
  }
}

}  // namespace

void ReadKeys(const Reader& store, const KeyRange& keys, const std::string& parameter, TrendSummary& summary) {
  enum Column { Event = 5 };
  if (store.Where().kind == Database::Kind::PostgreSql) {
    return ReadKeysOfServer(store, keys, parameter, summary);
  }
  EventWalk events(store, summary);
  Rows rows(store,
            "SELECT position, '', kind, value_text, value_number, event_id FROM parameters WHERE event_id > ?1 AND "
            "event_id <= ?2 AND name = ?3 ORDER BY event_id");
  for (rows.Ask(keys.after, keys.upTo, parameter); rows.Next();) {
    events.To(rows.Integer(Event));
    AddValue(summary, events.Time(), events.Source(), rows, rows.Integer(Event));
  }
}

}  // namespace Velora::Ts
