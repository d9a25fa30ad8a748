#pragma once

#include "output/Terminal.h"

#include <string>

namespace Velora::Ts {

class EventRows;
class Store;

// Events one after the other, for show and tail.

/// The events of a run, in the order of their saving.
EventRows EventsOfRun(const Store& store, long long root);
/// Those with a higher number; reads what was recorded since, and no more.
EventRows EventsOfRunSince(const Store& store, long long root, long long number);

/// Writes an event on a line, as much of it as the terminal has room for.
class EventLines {
 public:
  void Write(EventRows& events);

 private:
  Terminal terminal;
  std::size_t nodeWidth = 0;
  std::size_t nameWidth = 0;
};

std::string EventAsJson(EventRows& events);

}  // namespace Velora::Ts
