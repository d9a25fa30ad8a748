#pragma once

#include "store/asking/Condition.h"
#include "store/asking/EventWindow.h"
#include "store/reading/EventRows.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Velora::Store {

/// The numbers of the events of a window that fulfil conditions, in the order of their times. An event fulfils several
/// if it has a parameter for each of them.
class FulfillingEvents {
 public:
  FulfillingEvents(const WindowQuestion& window, std::vector<Condition> conditions);

  /// Runs the query, and stands before the first event.
  FulfillingEvents& Ask();
  /// Goes to the next event. @return whether there is one.
  bool Next();
  /// The number of the current event.
  long long Event() const { return event; }
  /// The names in conditions that no event has had so far.
  const std::set<std::string>& NotMet() const { return notMet; }

 private:
  /// Reads the parameters of an event. @return whether it fulfils the conditions.
  bool Read();

  const WindowQuestion& window;
  const std::vector<Condition> conditions;
  const std::set<std::string> names;  // in conditions
  std::set<std::string> notMet;
  Rows parameters;
  bool more = false;  // whether `parameters` stands on a parameter
  long long event = 0;
};

/// The events of a window that fulfil conditions, with their parameters, in the order of their times.
class SelectedEvents {
 public:
  /// @param columns columns of the events v; the first must be the number of the event.
  /// @param joins further tables of these columns, which add no rows.
  SelectedEvents(const Reader& store, const EventWindow& window, const std::vector<Condition>& conditions,
                 const std::string& columns, const std::string& joins = "");

  /// Runs the queries, and stands before the first event.
  SelectedEvents& Ask();
  /// Goes to the next event. @return whether there is one.
  bool Next();
  /// Stands on the current event.
  EventRows& Events() { return events; }
  /// The names in conditions that no event has had so far.
  const std::set<std::string>& NotMet() const;

 private:
  const WindowQuestion window;
  EventRows events;
  std::unique_ptr<FulfillingEvents> fulfilling;  // in the same order; null without conditions
  bool more = false;                             // whether it stands on an event
};

}  // namespace Velora::Store
