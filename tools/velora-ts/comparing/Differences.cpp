#include "comparing/Differences.h"

namespace Velora::Ts {

using namespace Store;

namespace {

Execution RootOf(const Comparison::Side& side) {
  Rows rows = QueryExecutions(side.store, "WHERE e.execution_id = ?1");
  rows.Ask(side.run.root).Next();
  return ExecutionAt(rows);
}

}  // namespace

ComparedRuns::ComparedRuns(const Comparison::Side& first, const Comparison::Side& second, const ComparisonRules& rules,
                           bool durationsCount)
    : comparison(first, second, rules),
      firstHosts(first.store),
      secondHosts(second.store),
      found{comparison,
            RootOf(first),
            RootOf(second),
            firstHosts,
            secondHosts,
            firstHosts.Of(first.run),
            secondHosts.Of(second.run),
            durationsCount,
            ConfigurationsOf(first.store, first.run),
            ConfigurationsOf(second.store, second.run)} {}

bool Differences::AreNone(const Summary& summary) const {
  bool changed = false;
  ForEachChangedLine([&](const ChangedLine& /*unused*/) { changed = true; });
  return !changed && summary.IsEmpty(durationsCount);
}

}  // namespace Velora::Ts
