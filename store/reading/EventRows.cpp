#include "store/reading/EventRows.h"

namespace Velora::Store {

namespace {

constexpr int eventColumn = 5;

}  // namespace

EventRows::EventRows(const Reader& store, const std::string& columns, const std::string& tables,
                     const std::string& condition, const std::string& order)
    : events(store, "SELECT " + columns + " FROM " + tables + " WHERE " + condition + " ORDER BY " + order),
      parameters(store, "SELECT p.position, p.name, p.kind, p.value_text, p.value_number, p.event_id FROM " + tables +
                            " JOIN parameters p ON p.event_id = v.event_id WHERE " + condition + " ORDER BY " + order +
                            ", p.position") {}

bool EventRows::Next() {
  while (begun && NextParameter()) {
  }
  return begun = events.Next();
}

bool EventRows::NextParameter() {
  if (onParameter) {
    more = parameters.Next();
  }
  return onParameter = more && parameters.Integer(eventColumn) == events.Integer(0);
}

}  // namespace Velora::Store
