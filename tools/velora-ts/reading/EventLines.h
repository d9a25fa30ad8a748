#pragma once

#include "output/Terminal.h"
#include "store/reading/EventRows.h"

#include <string>

namespace Velora::Ts {

// Events one after the other, for show and tail.

/// The events of a run, in the order of their saving.
Store::EventRows EventsOfRun(const Store::Reader& store, long long root);
/// Those with a higher number; reads what was recorded since, and no more.
Store::EventRows EventsOfRunSince(const Store::Reader& store, long long root, long long number);

/// Writes an event on a line, as much of it as the terminal has room for.
class EventLines {
 public:
  void Write(Store::EventRows& events);

 private:
  Terminal terminal;
  std::size_t nodeWidth = 0;
  std::size_t nameWidth = 0;
};

std::string EventAsJson(Store::EventRows& events);

}  // namespace Velora::Ts
