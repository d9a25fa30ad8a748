#pragma once

#include "store/comparing/EventStream.h"
#include "store/comparing/Matching.h"
#include "store/comparing/RunTree.h"
#include "store/comparing/Value.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace Velora::Store {

/// What two runs are compared by.
struct ComparisonRules : Rules {
  double slower = 1.5;            ///< Durations differ if one is so many times the other,
  double shortestDifference = 1;  ///< and by more than so many seconds.
};

/// Something that was compared in both runs, or that is in one of them alone.
struct Compared {
  enum class Kind { Execution, Order, Status, Version, Duration, Event, EventOrder, Parameter };

  Kind kind = Kind::Execution;
  bool differs = true;
  std::size_t first = Matching::none, second = Matching::none;  ///< The executions; none for one that is not there.
  std::string event;                                            ///< Name of the event, as stored,
  std::size_t firstOccurrence = 0, secondOccurrence = 0;        ///< and which of this name it is in its execution.
  std::optional<long long> firstEvent, secondEvent;             ///< Keys of the events.
  std::string parameter;                                        ///< Name of the parameter, as stored,
  std::size_t occurrence = 1;                                   ///< and which of this name it is in its event.
  std::optional<Value> firstValue, secondValue;                 ///< Nothing for one that is not there.
  std::optional<double> by;     ///< First minus second number; of durations, first divided by second.
  std::optional<long long> at;  ///< When, by the clock of the first run, in microseconds since 1970.

  bool IsInBoth() const { return first != Matching::none && second != Matching::none; }
};

/// Two runs, side by side. All executions of both are in memory, and of their events a few.
class Comparison {
 public:
  /// A run and its store. Both must outlive the comparison.
  struct Side {
    const Reader& store;
    const Run& run;
  };
  Comparison(const Side& first, const Side& second, ComparisonRules rules);

  const Side& FirstSide() const { return first; }
  const Side& SecondSide() const { return second; }
  const ComparisonRules& ComparedBy() const { return rules; }
  const RunTree& First() const { return firstTree; }
  const RunTree& Second() const { return secondTree; }
  const Matching& Matched() const { return matching; }

  /// Visits everything that was compared, also what is equal: the executions, each run in the order of its keys, and
  /// then the events of those in both. What is below an execution that is alone is not visited.
  using Visitor = std::function<void(const Compared&)>;
  void Visit(const Visitor& visit) const;

 private:
  const Side first, second;
  const ComparisonRules rules;
  const RunTree firstTree, secondTree;
  const Matching matching;
};

}  // namespace Velora::Store
