#pragma once

#include "output/LogLines.h"
#include "output/Terminal.h"
#include "output/Times.h"
#include "store/reading/EventRows.h"
#include "store/reading/ExecutionPath.h"
#include "store/reading/KnownStores.h"

#include <VeloraLogFile/Line.h>

#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

// Events one after the other, as show and tail write them.

/// The events of a run, in the order of their numbers.
Store::EventRows EventsOfRun(const Store::Reader& store, long long root);
/// The keys that the store of a run gives to events from now on.
Store::KeyRange LaterEvents(const Store::Reader& store, long long root);
/// The events of a run with these keys. Reads only what its store recorded under them.
Store::EventRows EventsOfRunSince(const Store::Reader& store, long long root, const Store::KeyRange& keys);

/// The event whose number is asked for.
Store::EventRows EventNumbered(const Store::Reader& store);

/// The time of the current event, in microseconds since 1970; the earliest of all if it cannot be read.
long long TimeOf(const Store::EventRows& events);

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
  /// Writes a line of a log.
  void Write(const LogFile::Line& line);
  /// Writes all events that follow, and among them the lines of a log by their times.
  template <typename Lines>
  void WriteAll(Store::EventRows& events, Store::ExecutionPaths& paths, std::optional<LinesBeside<Lines>>& log) {
    const auto writeLine = [this](const LogFile::Line& line) { Write(line); };
    while (events.Next()) {
      if (log) {
        log->Before(TimeOf(events), writeLine);
      }
      Write(events, paths);
    }
    if (log) {
      log->Before(std::numeric_limits<long long>::max(), writeLine);
    }
  }

 private:
  void Write(std::string_view at, const std::string& where, const std::string& name, const std::string& more);

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
