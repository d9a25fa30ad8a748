#include "store/reading/Executions.h"

#include "store/reading/Rows.h"
#include "store/values/StoredTime.h"

namespace Velora::Store {
namespace {

constexpr const char* texts[] = {"e.guid",       "e.node", "e.description", "e.started_at",
                                 "n.instrument", "n.host", "v.name",        "v.version"};
constexpr const char* status =
    ", (SELECT code FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1), "
    "(SELECT at FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1)";

constexpr const char* tables =
    " FROM executions e LEFT JOIN sessions n ON n.session_id = e.session_id "
    "LEFT JOIN activity_versions v ON v.version_id = e.version_id "
    "LEFT JOIN activities a ON a.activity_id = v.activity_id ";

}  // namespace

Rows QueryExecutions(const Reader& store, const std::string& condition, const std::vector<std::string>& more,
                     std::size_t longest) {
  std::string selected = "SELECT e.execution_id";
  for (const char* const text : texts) {
    selected += ", " + Beginning(text, longest);
  }
  selected += status;
  for (const std::string& column : more) {
    selected += ", " + column;
  }
  return {store, selected + tables + condition};
}

Execution ExecutionAt(const Rows& rows) {
  const auto text = [&](int column) { return std::string(rows.Text(column)); };
  return {rows.Integer(0), text(1), text(2), text(3), text(4),
          text(5),         text(6), text(7), text(8), rows.IsNull(9) ? std::nullopt : std::optional(rows.Integer(9)),
          text(10)};
}

bool IsRunning(const Execution& execution) { return execution.status == Running; }

std::optional<double> SecondsOf(const Execution& execution) {
  return IsRunning(execution) ? std::nullopt : SecondsBetween(execution.startedAt, execution.statusAt);
}

}  // namespace Velora::Store
