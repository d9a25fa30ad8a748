#pragma once

#include <optional>
#include <string>

namespace Velora::Ts {

class Rows;

/// An execution as the verbs show it.
struct Execution {
  long long key = 0;
  std::string guid, node, description, startedAt;
  std::string instrument, host;
  std::string activity, version;    ///< Empty for none.
  std::optional<long long> status;  ///< The newest, and since when.
  std::string statusAt;
};

/// Columns and tables that ExecutionAt() reads; goes on with WHERE, about e, n, v and a.
inline constexpr const char* executionQuestion =
    "SELECT e.execution_id, e.guid, e.node, e.description, e.started_at, n.instrument, n.host, v.name, v.version, "
    "(SELECT code FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1), "
    "(SELECT at FROM statuses WHERE execution_id = e.execution_id ORDER BY status_id DESC LIMIT 1) "
    "FROM executions e LEFT JOIN sessions n ON n.session_id = e.session_id "
    "LEFT JOIN activity_versions v ON v.version_id = e.version_id "
    "LEFT JOIN activities a ON a.activity_id = v.activity_id ";

Execution ExecutionAt(const Rows& rows);

/// What of a run did not finish cannot be overlooked.
inline constexpr const char* unfinishedInWords = "UNFINISHED";
bool IsRunning(const Execution& execution);
std::string StateInWords(const Execution& execution);
/// With its version, printable.
std::string ActivityInWords(const Execution& execution);
/// How long a finished one took.
std::optional<double> SecondsOf(const Execution& execution);
/// The same for a table; empty for one that did not finish.
std::string DurationInWords(const Execution& execution, bool fractions);
/// Members of a JSON object, without its braces.
std::string JsonMembers(const Execution& execution);

}  // namespace Velora::Ts
