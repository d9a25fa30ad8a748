#include "verbs/StepOrder.h"

#include "output/StatedTime.h"
#include "output/Words.h"
#include "verbs/Verb.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace Velora::Ts {

using namespace Store;

StepOrder::StepOrder(const Store::Reader& store, const std::string& name)
    : name(name),
      ofRun(store,
            "SELECT p.value_text FROM executions e JOIN events v ON v.execution_id = e.execution_id "
            "JOIN parameters p ON p.event_id = v.event_id WHERE e.root_id = ?1 AND p.name = ?2 AND p.kind = 'text'"),
      ofExecution(store,
                  "SELECT p.value_text FROM events v JOIN parameters p ON p.event_id = v.event_id "
                  "WHERE v.execution_id = ?1 AND p.name = ?2 AND p.kind = 'text' "
                  "ORDER BY v.event_id DESC, p.position DESC LIMIT 1") {}

void StepOrder::ExpectTimesIn(const Store::Run& run) {
  bool found = name.empty();
  for (ofRun.Ask(run.root, name); !found && ofRun.Next();) {
    found = StatedTime(ofRun.Text(0)).has_value();
  }
  if (!found) {
    throw UsageError("order '" + Shown(name) +
                     "': expected a parameter of the run whose texts are times, such as 24-Nov-26 21:55:03");
  }
}

void StepOrder::Sort(std::vector<long long>& keys) {
  if (name.empty()) {
    return;
  }
  std::vector<std::pair<long long, long long>> timed;
  for (const long long key : keys) {
    std::optional<long long> time;
    if (ofExecution.Ask(key, name).Next()) {
      time = StatedTime(ofExecution.Text(0));
    }
    timed.emplace_back(time.value_or(std::numeric_limits<long long>::max()), key);
  }
  std::stable_sort(timed.begin(), timed.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  std::transform(timed.begin(), timed.end(), keys.begin(), [](const auto& one) { return one.second; });
}

}  // namespace Velora::Ts
