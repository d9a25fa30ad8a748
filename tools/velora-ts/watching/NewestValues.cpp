#include "watching/NewestValues.h"

#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/StoredText.h"
#include "watching/Shortened.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long newestEvents = 5000;

// A text that is so long is no number.
constexpr const char* question =
    "SELECT p.position, '', substr(p.kind, 1, 20), CASE WHEN length(p.value_text) <= 100 THEN p.value_text END, "
    "p.value_number, substr(v.at, 1, 40), substr(n.instrument, 1, 405), r.guid FROM parameters p "
    "JOIN events v ON v.event_id = p.event_id JOIN sessions n ON n.session_id = v.session_id "
    "LEFT JOIN executions x ON x.execution_id = v.execution_id LEFT JOIN executions r ON r.execution_id = x.root_id "
    "WHERE p.event_id > ?1 AND p.event_id <= ?2 AND p.name = ?3 ORDER BY p.event_id DESC, p.position DESC";

}  // namespace

void NewestValues::Begin(const Store::Reader& store, const Heads& heads) {
  newest.clear();
  for (const Head& head : heads.stores) {
    Take(store, {head.events - std::min(head.events, newestEvents), head.events});
  }
}

// Within one store the newest has the highest key; among several, the times decide.
void NewestValues::Take(const Store::Reader& store, const KeyRange& events) {
  if (names.empty() || events.after >= events.upTo) {
    return;
  }
  Rows rows(store, question);
  for (std::size_t at = 0; at < names.size(); ++at) {
    const std::string name = ToStoredText(names[at]);
    std::map<std::string, ValueNow> found;
    for (rows.Ask(events.after, events.upTo, name); rows.Next();) {
      const std::string instrument = Shortened(rows.Text(6));
      const std::optional<double> number = NumberOf(rows);
      if (number && (found.count(instrument) > 0 || found.size() < mostInstrumentsNow)) {
        found.try_emplace(instrument, ValueNow{instrument, Shortened(name), std::string(rows.Text(5)), *number,
                                               rows.IsNull(7) ? "" : Shortened(rows.Text(7))});
      }
    }
    for (auto& [instrument, value] : found) {
      ValueNow& known = newest[{instrument, at}];
      if (value.at >= known.at) {
        known = std::move(value);
      }
    }
  }
}

std::vector<ValueNow> NewestValues::Shown() const {
  std::vector<ValueNow> values;
  for (const auto& [key, value] : newest) {
    values.push_back(value);
  }
  return values;
}

}  // namespace Velora::Ts
