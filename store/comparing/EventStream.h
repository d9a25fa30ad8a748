#pragma once

#include "store/comparing/Value.h"
#include "store/reading/EventRows.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// An event to be compared, with the parameters that are not ignored. Names are as stored.
struct ComparedEvent {
  struct Parameter {
    std::string name;
    Value value;
  };

  long long number = 0;
  std::string name;
  std::optional<long long> at;  ///< Microseconds since 1970.
  std::vector<Parameter> parameters;
};

/// The events of a run, execution by execution in the order of their keys. Keeps one event in memory.
class EventStream {
 public:
  EventStream(const Reader& store, long long root, const Rules& rules);

  /// Asks for the events of the executions with these keys and all between them.
  void Ask(long long from, long long to);
  /// Goes on to the events of an execution, past those of others.
  void GoTo(long long key);
  /// The next event of that execution. Nothing if there are no more.
  std::optional<ComparedEvent> Next();

 private:
  void Advance();

  const Rules& rules;
  const long long root;
  EventRows rows;
  long long execution = 0;      // to which GoTo() went
  std::optional<long long> at;  // the execution of the event on which `rows` stands
};

}  // namespace Velora::Store
