#include "asking/NewestNames.h"

#include "store/reading/Rows.h"
#include "store/values/StoredTime.h"

#include <VeloraText/Character.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string_view>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long newestEvents = 500;
constexpr long long moments = 100, eventsOfMoment = 5;
constexpr long long mostParameters = 20000;  // of these events

/// A query for the parameters of a few events.
/// @param events a query for their keys, names and times.
std::string ParametersOf(const std::string& events) {
  enum { LongestKind = 10 };
  return "SELECT " + Beginning("p.name", NewestNames::longest + 1) + ", " + Beginning("p.kind", LongestKind) + ", " +
         Beginning("v.name", NewestNames::longest + 1) + ", v.at FROM (" + events +
         ") v CROSS JOIN parameters p WHERE p.event_id = v.event_id LIMIT " + std::to_string(mostParameters);
}

/// A query for a few events, from a time on.
std::string EventsFrom(const char* order, long long most) {
  return std::string("SELECT event_id, name, at FROM events WHERE at >= ?1 ORDER BY at ") + order + " LIMIT " +
         std::to_string(most);
}

/// A query for a few events of a run.
std::string EventsOfRun(const char* order) {
  return std::string(
             "SELECT v.event_id, v.name, v.at FROM executions x JOIN events v ON v.execution_id = x.execution_id "
             "WHERE x.root_id = ?1 ORDER BY x.execution_id ") +
         order + ", v.event_id " + order + " LIMIT " + std::to_string(newestEvents);
}

/// The time of the first event, or of the last one.
std::optional<long long> TimeOfEvent(const Reader& store, const char* order) {
  Rows rows(store, std::string("SELECT at FROM events ORDER BY at ") + order + " LIMIT 1");
  return rows.Next() ? Microseconds(rows.Text(0)) : std::nullopt;
}

std::size_t Characters(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    text.remove_prefix(Text::Character(text).length);
  }
  return count;
}

}  // namespace

void NewestNames::Add(const Reader& store) {
  Rows newest(store, ParametersOf(EventsFrom("DESC", newestEvents)));
  Take(newest.Ask(std::string()));
  const std::optional<long long> first = TimeOfEvent(store, "ASC"), last = TimeOfEvent(store, "DESC");
  if (!first || !last) {
    return;
  }
  Rows since(store, ParametersOf(EventsFrom("ASC", eventsOfMoment)));
  for (long long moment = 0; moment < moments; ++moment) {
    const std::chrono::microseconds at(*first + (*last - *first) / moments * moment);
    Take(since.Ask(ToStoredTime(Time(at))));
  }
}

void NewestNames::Add(const Reader& store, const Run& run) {
  for (const char* const order : {"ASC", "DESC"}) {
    Rows rows(store, ParametersOf(EventsOfRun(order)));
    Take(rows.Ask(run.root));
  }
}

void NewestNames::Take(Rows& rows) {
  enum { Name, Kind, Event, At };
  while (rows.Next()) {
    const std::string name(rows.Text(Name)), at(rows.Text(At));
    const bool known = parameters.contains(name);
    if (!known && (parameters.size() == mostNames || Characters(name) > longest)) {
      cut = true;
      continue;
    }
    NamedParameter& parameter = parameters[name];
    parameter.kinds.emplace(rows.Text(Kind));
    if (parameter.events.size() < mostEvents && Characters(rows.Text(Event)) <= longest) {
      parameter.events.emplace(rows.Text(Event));
    }
    parameter.lastAt = std::max(parameter.lastAt, at);
  }
}

}  // namespace Velora::Ts
