#pragma once

#include "store/reading/Rows.h"

#include <string>

namespace Velora::Store {

/// Events and the parameters of each. Two queries run side by side: a query for the parameters of each event would be
/// slow on a server, and a single query for both would repeat an event's columns with each parameter.
class EventRows {
 public:
  /// @param columns columns of the events; the first must be the number of the event.
  /// @param tables the tables to read, joined; the table of events must be called v.
  /// @param order must end with the number of the event.
  /// @param ofEvent the condition for the parameters p of an event.
  EventRows(const Reader& store, const std::string& columns, const std::string& tables, const std::string& condition,
            const std::string& order = "v.event_id", const std::string& ofEvent = "p.event_id = v.event_id");

  /// Runs the queries with these values for ?1, ?2..., and stands before the first event.
  template <typename... Values>
  EventRows& Ask(const Values&... values) {
    events.Ask(values...);
    parameters.Ask(values...);
    begun = onParameter = false;
    more = parameters.Next();
    return *this;
  }
  /// Goes to the next event. @return whether there is one.
  bool Next();
  /// The columns of the current event.
  const Rows& Event() const { return events; }

  /// Goes to the next parameter of the event. @return whether there is one.
  bool NextParameter();
  /// The position, name, kind, value as text and value as number of the current parameter.
  const Rows& Parameter() const { return parameters; }

 private:
  Rows events, parameters;
  long long event = 0;       // the number of the current event
  bool begun = false;        // whether `events` stands on an event
  bool more = false;         // whether `parameters` stands on a parameter
  bool onParameter = false;  // whether NextParameter() returned that parameter
};

}  // namespace Velora::Store
