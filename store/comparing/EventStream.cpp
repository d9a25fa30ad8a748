#include "store/comparing/EventStream.h"

#include "store/values/StoredTime.h"

namespace Velora::Store {

namespace {

enum Column { Number, Execution, Name, At };
constexpr int parameterName = 1;

}  // namespace

EventStream::EventStream(const Reader& store, long long root, const Rules& rules)
    : rules(rules),
      root(root),
      rows(store, "v.event_id, v.execution_id, v.name, v.at",
           "executions x JOIN events v ON v.execution_id = x.execution_id",
           "x.root_id = ?1 AND x.execution_id >= ?2 AND x.execution_id <= ?3", "x.execution_id, v.event_id") {}

void EventStream::Ask(long long from, long long to) {
  rows.Ask(root, from, to);
  Advance();
}

void EventStream::GoTo(long long key) {
  execution = key;
  while (at && *at < key) {
    Advance();
  }
}

std::optional<ComparedEvent> EventStream::Next() {
  if (at != execution) {
    return std::nullopt;
  }
  ComparedEvent event;
  event.number = rows.Event().Integer(Number);
  event.name = rows.Event().Text(Name);
  event.at = Microseconds(rows.Event().Text(At));
  while (rows.NextParameter()) {
    if (const std::string_view name = rows.Parameter().Text(parameterName); rules.ignored.count(name) == 0) {
      event.parameters.push_back({std::string(name), ValueAt(rows.Parameter())});
    }
  }
  Advance();
  return event;
}

void EventStream::Advance() {
  do {
    at = rows.Next() ? std::optional(rows.Event().Integer(Execution)) : std::nullopt;
  } while (at && !rules.ignored.empty() && rules.ignored.count(rows.Event().Text(Name)) > 0);
}

}  // namespace Velora::Store
