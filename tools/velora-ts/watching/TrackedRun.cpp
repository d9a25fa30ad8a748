#include "watching/TrackedRun.h"

#include "store/reading/EventKeys.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Stops.h"
#include "store/schema/StoreNumbers.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"
#include "watching/Shortened.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::chrono::seconds rateOver{60};
constexpr std::chrono::seconds leastForRate{10};
constexpr std::chrono::seconds betweenRates{5};  // so that an idle run does not change at each look

std::string Start(const std::string& column) { return "substr(" + column + ", 1, " + asLongAsShown + ')'; }

/// A parameter at which rows stand whose texts can be cut.
ParameterNow ParameterOf(const Rows& parameters) {
  ParameterNow parameter{Shortened(parameters.Text(1)), std::string(parameters.Text(2)), ""};
  if (parameters.IsNull(3)) {
    AppendParameterValue(parameter.value, parameters);
  } else {
    AppendText(parameter.value, Shortened(parameters.Text(3)));
  }
  return parameter;
}

long long MicrosecondsNow() { return Store::Now().time_since_epoch().count(); }

}  // namespace

TrackedRun::TrackedRun(const Store::Reader& store, long long root, const KnownState& state, SeenTime& lastSeen)
    : run(RunOf(store, root)), lastSeen(lastSeen) {
  Rows rows(store, "SELECT " + Start("COALESCE(v.name, '')") + ", " + Start("COALESCE(v.version, '')") +
                       " FROM executions e LEFT JOIN activity_versions v ON v.version_id = e.version_id "
                       "WHERE e.execution_id = ?1");
  rows.Ask(root).Next();
  now.root = root;
  now.guid = Shortened(run.guid);
  now.node = Shortened(run.node);
  now.activity = Shortened(rows.Text(0));
  now.version = Shortened(rows.Text(1));
  now.startedAt = Shortened(run.startedAt);
  now.state = state.state;
  now.why = Shortened(state.why);
  Count(store);
}

void TrackedRun::Take(const Store::Reader& store, const NewOfRun& rows) {
  now.events += rows.events;
  now.lastRecordedAt = std::max(now.lastRecordedAt, lastSeen.Of(rows.lastAt));
  if (rows.events > 0) {
    lately.emplace_back(Clock::now(), rows.events);
  }
  if (rows.lastEvent > lastEvent) {
    lastEvent = rows.lastEvent;
    ReadLastEvent(store);
  }
  if (rows.moved) {
    ReadPath(store);
  }
  Mark();
}

void TrackedRun::Take(const Store::Reader& store, const KnownState& state) {
  if (state.state == now.state && Shortened(state.why) == now.why) {
    return;
  }
  now.state = state.state;
  now.why = Shortened(state.why);
  if (store.Where().kind == Database::Kind::PostgreSql && StoreOf(run.root) == thisStore) {
    Count(store);
  } else {
    ReadPath(store);
  }
}

std::shared_ptr<const RunNow> TrackedRun::Shown() {
  Rate();
  if (!shown || *shown != now) {
    shown = std::make_shared<const RunNow>(now);
  }
  return shown;
}

void TrackedRun::Count(const Store::Reader& store) {
  const auto [after, upTo] = EventKeysOf(store, run.root);
  Rows rows(store,
            "SELECT COUNT(*), MAX(v.event_id) FROM executions x JOIN events v ON v.execution_id = x.execution_id AND "
            "v.event_id > ?2 AND v.event_id <= ?3 WHERE x.root_id = ?1");
  rows.Ask(run.root, after, upTo).Next();
  now.events = rows.Integer(0);
  lastEvent = rows.IsNull(1) ? 0 : rows.Integer(1);
  now.lastRecordedAt = lastSeen.Of(Shortened(LastRecorded(store, run)));
  ReadLastEvent(store);
  ReadPath(store);
  Mark();
}

void TrackedRun::ReadLastEvent(const Store::Reader& store) {
  Rows event(store, "SELECT " + Start("name") + ", " + Start("at") + " FROM events WHERE event_id = ?1");
  if (!event.Ask(lastEvent).Next()) {
    now.lastEvent.reset();
    return;
  }
  now.lastEvent = EventNow{Shortened(event.Text(0)), Shortened(event.Text(1)), {}};
  Rows parameters(store, "SELECT position, " + Start("name") + ", substr(kind, 1, 20), " + Start("value_text") +
                             ", value_number FROM parameters WHERE event_id = ?1 ORDER BY position LIMIT " +
                             std::to_string(mostParametersNow));
  for (parameters.Ask(lastEvent); parameters.Next();) {
    now.lastEvent->parameters.push_back(ParameterOf(parameters));
  }
}

void TrackedRun::ReadPath(const Store::Reader& store) {
  std::size_t all = 0;
  const std::vector<Stop> stops = StopsOf(store, run, 1, all);
  std::vector<StepNow> path;
  if (!stops.empty()) {
    const ExecutionPath& steps = stops.front().path;
    const std::size_t first = steps.size() - std::min(steps.size(), mostStepsNow);
    for (std::size_t depth = first; depth < steps.size(); ++depth) {
      path.push_back(Step(store, steps[depth], depth - first));
    }
  }
  now.path = std::move(path);
}

// Counts on from the step that was here before, if both are below the same parent: there can be very many.
StepNow TrackedRun::Step(const Store::Reader& store, const PathStep& step, std::size_t depth) const {
  const bool hasBefore = depth < now.path.size();
  if (hasBefore && now.path[depth].execution == step.key) {
    return now.path[depth];
  }
  Rows start(store, "SELECT " + Start("started_at") + " FROM executions WHERE execution_id = ?1");
  StepNow found{step.key, Shortened(step.activity), Shortened(step.node), "", std::nullopt};
  found.startedAt = start.Ask(step.key).Next() ? Shortened(start.Text(0)) : "";
  if (!step.parent) {
    return found;
  }
  const bool goesOn = hasBefore && depth > 0 && now.path[depth - 1].execution == *step.parent &&
                      now.path[depth].activity == found.activity && now.path[depth].execution < step.key;
  Rows before(store, std::string("SELECT COUNT(*) FROM executions e LEFT JOIN activity_versions v ON v.version_id = "
                                 "e.version_id WHERE e.parent_id") +
                         (goesOn ? " + 0" : "") +
                         " = ?1 AND e.execution_id > ?2 AND e.execution_id <= ?3 AND COALESCE(v.name, '') = ?4");
  before.Ask(*step.parent, goesOn ? now.path[depth].execution : 0, step.key, step.activity).Next();
  found.number = before.Integer(0) + (goesOn ? now.path[depth].number.value_or(0) : 0);
  return found;
}

void TrackedRun::Mark() { now.mark = std::max(now.mark + 1, MicrosecondsNow()); }

void TrackedRun::Rate() {
  const bool canRecord = now.state == RunState::Running || now.state == RunState::NotKnown;
  if (!canRecord) {
    now.eventsPerMinute.reset();
    return;
  }
  const Clock::time_point present = Clock::now();
  if (present - rated < betweenRates || present - since < leastForRate) {
    return;
  }
  rated = present;
  while (!lately.empty() && lately.front().first < present - rateOver) {
    lately.pop_front();
  }
  const auto add = [](long long sum, const auto& found) { return sum + found.second; };
  const double events = static_cast<double>(std::accumulate(lately.begin(), lately.end(), 0LL, add));
  const double minutes = std::chrono::duration<double>(std::min<Clock::duration>(present - since, rateOver)) / rateOver;
  now.eventsPerMinute = std::round(events / minutes);
}

}  // namespace Velora::Ts
