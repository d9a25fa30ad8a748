#include "RunEvents.h"

#include "Json.h"
#include "Times.h"

#include <charconv>
#include <cmath>

namespace {

enum ColumnOf { Number, Execution, Name, At, Configuration, ParameterName, Kind, ValueText, ValueNumber };

std::optional<double> NumberIn(std::string_view text) {
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace

RunEvents::RunEvents(const Store& store, long long root)
    : rows(store,
           "SELECT e.event_id, e.execution_id, e.name, e.at, e.configuration_id, p.name, p.kind, p.value_text, "
           "p.value_number FROM executions x JOIN events e ON e.execution_id = x.execution_id "
           "LEFT JOIN parameters p ON p.event_id = e.event_id "
           "WHERE x.root_id = ?1 ORDER BY x.execution_id, e.event_id, p.position"),
      more(rows.Ask(root).Next()) {}

bool RunEvents::Next() {
  if (!more) {
    return false;
  }
  event.number = rows.Integer(Number);
  event.execution = rows.Integer(Execution);
  event.name = rows.Text(Name);
  event.at = Microseconds(rows.Text(At));
  if (!rows.IsNull(Configuration)) {
    configurations.insert(rows.Integer(Configuration));
  }
  event.readings.clear();
  do {
    if (!rows.IsNull(ParameterName)) {
      AddReading();
    }
    more = rows.Next();
  } while (more && rows.Integer(Number) == event.number);
  return true;
}

void RunEvents::AddReading() {
  Reading& reading = event.readings.emplace_back();
  reading.name = rows.Text(ParameterName);
  reading.kind = rows.Text(Kind);
  if (!rows.IsNull(ValueText)) {
    rows.AppendValue(reading.json, ValueText);
    reading.number = NumberIn(rows.Text(ValueText));
  } else if (!rows.IsNull(ValueNumber)) {
    reading.isNumber = true;
    reading.number = rows.Number(ValueNumber);
    AppendNumber(reading.json, *reading.number);
  } else {
    reading.json = "null";
  }
}
