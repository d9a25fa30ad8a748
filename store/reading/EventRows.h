#pragma once

#include "store/reading/Rows.h"

#include <string>

namespace Velora::Store {

/// Events, and the parameters of each. They are two questions side by side, since one for the parameters of every event
/// would take a server too long, and one for both would bring an event's columns again with each parameter.
class EventRows {
 public:
  /// @param columns of the events, the first of them their number.
  /// @param tables to read, joined; the events are called v.
  /// @param order ends with their number.
  EventRows(const Reader& store, const std::string& columns, const std::string& tables, const std::string& condition,
            const std::string& order = "v.event_id");

  /// Asks from the beginning, with these values for ?1, ?2...
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
  const Rows& Event() const { return events; }

  /// Goes to the next parameter of the event. @return whether there is one.
  bool NextParameter();
  /// Its position, name, kind, and value as text and as number.
  const Rows& Parameter() const { return parameters; }

 private:
  Rows events, parameters;
  bool begun = false;        // whether `events` stands on one
  bool more = false;         // whether `parameters` stands on one
  bool onParameter = false;  // whether that is one of this event, and was given away
};

}  // namespace Velora::Store
