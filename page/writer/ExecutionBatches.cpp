#include "page/writer/ExecutionBatches.h"

#include "store/values/Json.h"
#include "store/values/StoredTime.h"

namespace Velora::Page {

using namespace Store;

namespace {

constexpr std::size_t batchRows = 10000;

enum ColumnOf { Number, Parent, Session, Version, Started, Node, Description, Code, At };

std::optional<long long> KeyIn(const Rows& rows, int column) {
  return rows.IsNull(column) ? std::nullopt : std::optional(rows.Integer(column));
}

// Microseconds from the start of the run.
std::optional<long long> Since(long long start, std::string_view stored) {
  const std::optional<long long> at = Microseconds(stored);
  return at ? std::optional(*at - start) : std::nullopt;
}

std::string TextIn(const Rows& rows, int column) {
  std::string text;
  AppendText(text, rows.Text(column));
  return text;
}

}  // namespace

ExecutionBatches::ExecutionBatches(const Store::Reader& store, long long root, long long start)
    : rows(store,
           "SELECT x.execution_id, x.parent_id, x.session_id, x.version_id, x.started_at, x.node, x.description, "
           "s.code, s.at FROM executions x LEFT JOIN statuses s ON s.execution_id = x.execution_id "
           "WHERE x.root_id = ?1 ORDER BY x.execution_id, s.status_id"),
      more(rows.Ask(root).Next()),
      start(start) {}

bool ExecutionBatches::AppendBatch(std::string& json) {
  if (!more) {
    return false;
  }
  for (std::size_t count = 0; more && count < batchRows; ++count) {
    AddOne();
  }
  const char* separator = "{\"";
  for (const auto& [name, column] : {std::pair("number", &number),
                                     {"parent", &parent},
                                     {"session", &session},
                                     {"version", &version},
                                     {"started", &started},
                                     {"node", &node},
                                     {"description", &description},
                                     {"statuses", &statuses},
                                     {"status_at", &statusAt}}) {
    json += std::string(separator) + name + "\":";
    column->MoveTo(json);
    separator = ",\"";
  }
  json += '}';
  return true;
}

void ExecutionBatches::AddOne() {
  const long long execution = rows.Integer(Number);
  const auto startedAt = Since(start, rows.Text(Started));
  number.AddWhole(execution);
  parent.AddWhole(KeyIn(rows, Parent));
  session.AddWhole(KeyIn(rows, Session));
  version.AddWhole(KeyIn(rows, Version));
  started.AddWhole(startedAt);
  node.AddText(TextIn(rows, Node));
  description.AddText(TextIn(rows, Description));
  sessions.insert(rows.Integer(Session));
  versions.insert(rows.Integer(Version));
  AddStatuses(execution, startedAt);
}

void ExecutionBatches::AddStatuses(long long execution, std::optional<long long> startedAt) {
  std::string codes = "\"";
  do {
    if (!rows.IsNull(Code)) {
      codes += (codes.size() > 1 ? "," : "") + std::to_string(rows.Integer(Code));
      const auto at = Since(start, rows.Text(At));
      statusAt.AddOther(at && startedAt ? std::to_string(*at - *startedAt) : "null");
    }
    more = rows.Next();
  } while (more && rows.Integer(Number) == execution);
  statuses.AddText(codes + '"');
}

}  // namespace Velora::Page
