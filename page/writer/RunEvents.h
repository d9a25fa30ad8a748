#pragma once

#include "store/reading/EventRows.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Velora::Page {

/// A parameter of an event.
struct Reading {
  std::string name;
  std::string kind;
  std::string json;              ///< Its value.
  std::optional<double> number;  ///< What can be drawn of it: texts that read as a number have one too.
  bool isNumber = false;         ///< Whether it is stored as one.
};

/// An event with its parameters.
struct Event {
  long long number = 0;
  long long execution = 0;
  std::string name;
  std::optional<long long> at;
  std::vector<Reading> readings;
};

/// The events of a run, by execution and then in the order of saving. Keeps one event in memory.
class RunEvents {
 public:
  RunEvents(const Store::Reader& store, long long root);

  /// Goes to the next event. @return whether there is one.
  bool Next();
  const Event& Current() const { return event; }
  /// The keys of the configurations of the events so far.
  const std::set<long long>& Configurations() const { return configurations; }

 private:
  void AddReading(const Store::Rows& parameter);

  Store::EventRows rows;
  Event event;
  std::set<long long> configurations;
};

}  // namespace Velora::Page
