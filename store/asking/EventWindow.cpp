#include "store/asking/EventWindow.h"

#include "store/reading/KnownStores.h"

#include <utility>

namespace Velora::Store {

namespace {

const std::string isBetween = "v.at >= ?1 AND v.at < ?2";

constexpr const char* isSelected =
    " AND (?3 = '' OR v.name = ?3)"
    " AND (?4 = '' OR v.session_id IN (SELECT session_id FROM sessions WHERE instrument = ?4))"
    " AND (?5 = '' OR EXISTS (WITH RECURSIVE up(execution_id, parent_id, version_id) AS ("
    "SELECT execution_id, parent_id, version_id FROM executions WHERE execution_id = v.execution_id UNION ALL "
    "SELECT e.execution_id, e.parent_id, e.version_id FROM up CROSS JOIN executions e "
    "WHERE e.execution_id = up.parent_id AND up.parent_id < up.execution_id) "
    "SELECT 1 FROM up CROSS JOIN activity_versions w CROSS JOIN activities a "
    "WHERE w.version_id = up.version_id AND a.activity_id = w.activity_id AND (w.name = ?5 OR a.name = ?5)))";

}  // namespace

WindowQuestion::WindowQuestion(const Reader& store, EventWindow given)
    : store(store),
      window(std::move(given)),
      tables(window.run ? "executions o CROSS JOIN events v" : "events v"),
      condition((window.run ? "o.root_id = " + std::to_string(*window.run) + " AND v.execution_id = o.execution_id AND "
                            : "") +
                isBetween + isSelected),
      ofParameters("p.event_id = v.event_id") {
  if (store.Where().kind == Database::Kind::PostgreSql && !window.run) {
    LimitKeys();
  }
}

Rows WindowQuestion::Parameters(const std::string& columns, const std::string& joins, const std::string& more) const {
  return {store, "SELECT " + columns + " FROM " + tables + " CROSS JOIN parameters p " + joins + " WHERE " + condition +
                     " AND " + ofParameters + more};
}

std::vector<std::string> WindowQuestion::Values(const std::vector<std::string>& own) const {
  std::vector<std::string> values{window.from, window.before, window.name, window.instrument, window.activity};
  values.insert(values.end(), own.begin(), own.end());
  return values;
}

// A key of a server's own events begins with the month, so the keys say which partitions the server need not read.
// Those of other stores are below, in a partition of their own. The additions keep the server from looking for the
// lowest key along the index of keys.
void WindowQuestion::LimitKeys() {
  Rows keys(store, "SELECT MIN(v.event_id + 0), MAX(v.event_id + 0) FROM events v WHERE " + isBetween +
                       " GROUP BY v.event_id >= " + std::to_string(firstMonthlyKey));
  std::vector<std::pair<std::string, std::string>> ranges;
  for (keys.Ask(window.from, window.before); keys.Next();) {
    ranges.emplace_back(keys.Text(0), keys.Text(1));
  }
  const auto isIn = [&ranges](const std::string& key) {
    std::string any;
    for (const auto& [lowest, highest] : ranges) {
      any += any.empty() ? "" : " OR ";
      any.append(key).append(" BETWEEN ").append(lowest).append(" AND ").append(highest);
    }
    return any.empty() ? key + " = 0" : ranges.size() == 1 ? any : '(' + any + ')';  // keys begin with 1
  };
  condition += " AND " + isIn("v.event_id");
  ofParameters += " AND " + isIn("p.event_id");
}

}  // namespace Velora::Store
