#include "store/forwarding/Portion.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"

#include <algorithm>

namespace Velora::Store {
namespace {

// The tables that runs or the first seals need, and those whose rows wait until all others have come.
constexpr const char* beforeRuns[] = {"stores",        "ts_schema",     "sessions", "activities", "activity_versions",
                                      "registrations", "configurations"};
constexpr const char* afterRuns[] = {"notes", "seals", "tree_leaves", "tree_parts", "signatures", "timestamps"};

constexpr long long statusesOfAnExecution = 10;  // more than usual

class Plan {
 public:
  Plan(const Reader& file, const Marks& from, long long size)
      : file(file), from(from), top(MarksOf(file)), size(size), upTo(from) {}

  Marks Make() {
    if (TakeAll(beforeRuns) && TakeRuns()) {
      TakeAll(afterRuns);
    }
    return upTo;
  }

 private:
  template <typename Names>
  bool TakeAll(const Names& names) {
    return std::all_of(std::begin(names), std::end(names),
                       [this](const char* table) { return Take(table, LastOf(table, size)); });
  }

  /// @return whether nothing of the table is left.
  bool Take(const std::string& table, long long last) {
    upTo[table] = last;
    return last == top[table];
  }

  /// The number of the last one of so many new rows. Numbers can have been left out.
  long long LastOf(const std::string& table, long long rows) {
    const std::string key = TableNamed(table).Key();
    return Ask("SELECT MAX(" + key + ") FROM (SELECT " + key + " FROM " + table + " WHERE " + key + " > ?1 AND " + key +
                   " <= ?2 ORDER BY " + key + " LIMIT " + std::to_string(rows) + ")",
               from[table], top[table])
        .value_or(top[table]);
  }

  /// The last new row up to a number and before the first one that fulfils a condition.
  long long Before(const std::string& table, const std::string& condition, long long last, long long value) {
    const std::string key = TableNamed(table).Key();
    const auto found = Ask("SELECT " + key + " FROM " + table + " r WHERE " + key + " > ?1 AND " + key + " <= ?2 AND " +
                               condition + " ORDER BY " + key + " LIMIT 1",
                           from[table], last, value);
    return !found ? last
                  : Ask("SELECT MAX(" + key + ") FROM " + table + " WHERE " + key + " > ?1 AND " + key + " < ?2",
                        from[table], *found)
                        .value_or(from[table]);
  }

  /// Events decide: executions come as far as events refer to them, and statuses as far as the executions.
  bool TakeRuns() {
    long long executions = LastOf("executions", size);
    const long long events = Before("events", "execution_id > ?3", LastOf("events", size), executions);
    const bool allEvents = events == top["events"];
    if (!allEvents && events > from["events"]) {
      const auto highest =
          Ask("SELECT MAX(execution_id) FROM events WHERE event_id > ?1 AND event_id <= ?2", from["events"], events);
      executions = std::max(from["executions"], highest.value_or(0));
    }
    long long statuses =
        Before("statuses", "execution_id > ?3", LastOf("statuses", size * statusesOfAnExecution), executions);
    if (!allEvents) {
      statuses = Before("statuses",
                        "code <> 4 AND EXISTS (SELECT 1 FROM events e WHERE e.execution_id = r.execution_id AND "
                        "e.event_id > ?3)",
                        statuses, events);
    }
    const bool allExecutions = Take("executions", executions);
    const bool allStatuses = Take("statuses", statuses);
    return Take("events", events) && allExecutions && allStatuses;
  }

  template <typename... Values>
  std::optional<long long> Ask(const std::string& question, const Values&... values) {
    return file.Sql().Find<std::optional<long long>>(question, values...).value_or(std::nullopt);
  }

  const Reader& file;
  Marks from;
  Marks top;
  const long long size;
  Marks upTo;
};

}  // namespace

Marks PlanPortion(const Reader& file, const Marks& from, long long size) { return Plan(file, from, size).Make(); }

}  // namespace Velora::Store
