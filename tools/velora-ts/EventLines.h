#pragma once

#include "Terminal.h"

#include <string>

class Rows;
class Store;

// Events one after the other, for show and tail.

#define EVENT_COLUMNS "SELECT v.event_id, v.at, v.name, x.guid, x.node "
/// The events of a run, in the order of their saving.
inline constexpr const char* eventsOfRun = EVENT_COLUMNS
    "FROM executions x JOIN events v ON v.execution_id = x.execution_id WHERE x.root_id = ?1 ORDER BY v.event_id";
/// Those with a higher number; reads what was recorded since, and no more.
inline constexpr const char* newEventsOfRun = EVENT_COLUMNS
    "FROM events v LEFT JOIN executions x ON x.execution_id = v.execution_id WHERE v.event_id > ?2 "
    "AND x.root_id + 0 = ?1 ORDER BY v.event_id";
#undef EVENT_COLUMNS

/// Writes an event on a line, as much of it as the terminal has room for.
class EventLines {
 public:
  /// @param events one of the questions above.
  void Write(const Store& store, const Rows& events);

 private:
  Terminal terminal;
  std::size_t nodeWidth = 0;
  std::size_t nameWidth = 0;
};

std::string EventAsJson(const Store& store, const Rows& events);
