#include "store/reading/EventRows.h"

namespace Velora::Store {

namespace {

constexpr int eventColumn = 5;

}  // namespace

EventRows::EventRows(const Reader& store, const std::string& columns, const std::string& tables,
                     const std::string& condition, const std::string& order, const std::string& ofEvent)
    : events(store, "SELECT " + columns + " FROM " + tables + " WHERE " + condition + " ORDER BY " + order),
      parameters(store, "SELECT p.position, p.name, p.kind, p.value_text, p.value_number, p.event_id FROM " + tables +
                            " JOIN parameters p ON " + ofEvent + " WHERE " + condition + " ORDER BY " + order +
                            ", p.position") {}

bool EventRows::Next() {
  while (begun && NextParameter()) {
  }
  begun = events.Next();
  if (begun) {
    event = events.Integer(0);
  }
  return begun;
}

bool EventRows::NextParameter() {
  if (onParameter) {
    more = parameters.Next();
  }
  return onParameter = more && parameters.Integer(eventColumn) == event;
}

}  // namespace Velora::Store
