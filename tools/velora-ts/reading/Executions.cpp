#include "reading/Executions.h"

#include "output/Json.h"
#include "output/Times.h"
#include "reading/RecordedText.h"

namespace Velora::Ts {

namespace {

constexpr long long running = 4;
constexpr long long done = 14;

constexpr const char* columnsAndTables =
    "SELECT e.execution_id, e.guid, e.node, e.description, e.started_at, n.instrument, n.host, v.name, v.version, "
    "(SELECT code FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1), "
    "(SELECT at FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1) "
    "FROM executions e LEFT JOIN sessions n ON n.session_id = e.session_id "
    "LEFT JOIN activity_versions v ON v.version_id = e.version_id "
    "LEFT JOIN activities a ON a.activity_id = v.activity_id ";

}  // namespace

Rows QueryExecutions(const Store& store, const std::string& condition) { return {store, columnsAndTables + condition}; }

Execution ExecutionAt(const Rows& rows) {
  const auto text = [&](int column) { return std::string(rows.Text(column)); };
  return {rows.Integer(0), text(1), text(2), text(3), text(4),
          text(5),         text(6), text(7), text(8), rows.IsNull(9) ? std::nullopt : std::optional(rows.Integer(9)),
          text(10)};
}

bool IsRunning(const Execution& execution) { return execution.status == running; }

std::string StateInWords(const Execution& execution) {
  if (!execution.status) {
    return "no status";
  }
  return IsRunning(execution)       ? unfinishedInWords
         : execution.status == done ? "done"
                                    : "status " + std::to_string(*execution.status);
}

std::string ActivityInWords(const Execution& execution) {
  return Shown(execution.activity) + (execution.version.empty() ? "" : ' ' + Shown(execution.version));
}

std::optional<double> SecondsOf(const Execution& execution) {
  return IsRunning(execution) ? std::nullopt : SecondsBetween(execution.startedAt, execution.statusAt);
}

std::string DurationInWords(const Execution& execution, bool fractions) {
  const std::optional<double> seconds = SecondsOf(execution);
  return seconds ? Duration(*seconds, fractions) : "";
}

std::string JsonMembers(const Execution& execution) {
  std::string json;
  const auto add = [&](const char* name, const std::string& text) {
    json += json.empty() ? "\"" : ",\"";
    json += name;
    json += "\":";
    AppendText(json, text);
  };
  add("guid", execution.guid);
  add("node", execution.node);
  add("description", execution.description);
  add("instrument", execution.instrument);
  add("host", execution.host);
  add("activity", execution.activity);
  add("version", execution.version);
  add("started_at", execution.startedAt);
  add("status_at", execution.statusAt);
  json += ",\"status\":" + (execution.status ? std::to_string(*execution.status) : "null") + ",\"seconds\":";
  if (const std::optional<double> seconds = SecondsOf(execution)) {
    AppendNumber(json, *seconds);
  } else {
    json += "null";
  }
  return json;
}

}  // namespace Velora::Ts
