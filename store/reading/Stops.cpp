#include "store/reading/Stops.h"

#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/reading/Unfinished.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace Velora::Store {

namespace {

/// The end of a query for the running executions x of a run below which no child is running.
std::string InnermostOf(const Reader& store) {
  const std::string unfinished = UnfinishedExecutions(store) + " AND x.root_id = ?1";
  return unfinished + " AND x.execution_id NOT IN (SELECT x.parent_id" + unfinished + " AND x.parent_id IS NOT NULL)";
}

std::vector<long long> NewestEventsOf(const ExecutionPath& path, Rows& newest) {
  std::vector<long long> events;
  for (const PathStep& step : path) {
    for (newest.Ask(step.key); newest.Next();) {
      events.push_back(newest.Integer(0));
    }
  }
  std::sort(events.begin(), events.end(), std::greater<>());
  events.resize(std::min(events.size(), lastEvents));
  return events;
}

/// Without executions above another stop: those are running too, although something between the two is done.
std::vector<Stop> WithoutThoseAbove(const std::vector<Stop>& stops) {
  const auto isAbove = [&](const Stop& stop) {
    return std::any_of(stops.begin(), stops.end(), [&](const Stop& other) {
      return &other != &stop && std::any_of(other.path.begin(), other.path.end(),
                                            [&](const PathStep& step) { return step.key == stop.path.back().key; });
    });
  };
  std::vector<Stop> innermost;
  std::remove_copy_if(stops.begin(), stops.end(), std::back_inserter(innermost), isAbove);
  return innermost;
}

}  // namespace

std::vector<Stop> StopsOf(const Reader& store, const Run& run, std::size_t most, std::size_t& all) {
  ExecutionPaths paths(store);
  Rows newest(store, "SELECT event_id FROM events WHERE execution_id = ?1 ORDER BY event_id DESC LIMIT " +
                         std::to_string(lastEvents));
  const std::string ofInnermost = InnermostOf(store);
  Rows innermost(store,
                 "SELECT x.execution_id, x.started_at" + ofInnermost +
                     " ORDER BY COALESCE((SELECT at FROM events WHERE execution_id = x.execution_id ORDER BY event_id "
                     "DESC LIMIT 1), x.started_at) DESC, x.execution_id DESC LIMIT ?2");
  Rows count(store, "SELECT COUNT(*)" + ofInnermost);
  std::vector<Stop> stops;
  for (innermost.Ask(run.root, static_cast<long long>(most)); innermost.Next();) {
    const ExecutionPath& path = paths.Of(innermost.Integer(0));
    stops.push_back({path, std::string(innermost.Text(1)), NewestEventsOf(path, newest)});
  }
  std::vector<Stop> kept = WithoutThoseAbove(stops);
  count.Ask(run.root).Next();
  all = static_cast<std::size_t>(count.Integer(0)) - (stops.size() - kept.size());
  return kept;
}

}  // namespace Velora::Store
