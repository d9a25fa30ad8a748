#pragma once

#include "output/Terminal.h"
#include "output/Times.h"
#include "store/reading/EventRows.h"
#include "store/reading/ExecutionPath.h"

#include <string>

namespace Velora::Ts {

// Events one after the other, as show and tail write them.

/// The events of a run, in the order of their numbers.
Store::EventRows EventsOfRun(const Store::Reader& store, long long root);
/// The events of a run whose numbers are higher than `number`. Reads only what was recorded since that event.
Store::EventRows EventsOfRunSince(const Store::Reader& store, long long root, long long number);

/// Writes events as lines, each cut to the width of the terminal, but never within the path of the execution.
class EventLines {
 public:
  /// Where the path of an execution begins.
  enum class Paths { BelowRun, AtRun };

  /// @param digits the significant digits of numbers.
  explicit EventLines(int digits, Paths begins = Paths::BelowRun) : digits(digits), begins(begins) {}

  /// Writes the current event and its parameters.
  /// @param paths the paths of the executions in the same store.
  void Write(Store::EventRows& events, Store::ExecutionPaths& paths);

 private:
  const int digits;
  const Paths begins;
  const Terminal terminal;
  DayLines days;
  std::size_t nodeWidth = 0;
  std::size_t nameWidth = 0;
};

/// The current event and its parameters as a JSON object.
/// @param more further members before the parameters, each with a comma before it.
/// @throws Error when a text is too long to be shown.
std::string EventAsJson(Store::EventRows& events, const std::string& more = "");

}  // namespace Velora::Ts
