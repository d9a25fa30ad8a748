#pragma once

#include "reading/Rows.h"

#include <optional>
#include <string>

namespace Velora::Ts {

/// An execution as the verbs show it.
struct Execution {
  long long key = 0;
  std::string guid, node, description, startedAt;
  std::string instrument, host;
  std::string activity, version;    ///< Empty for none.
  std::optional<long long> status;  ///< The newest, and since when.
  std::string statusAt;
};

/// A query for executions, whose rows ExecutionAt() reads.
/// @param condition begins with WHERE. It is about an execution e, its session n, its activity version v and the
/// activity a of that version.
Rows QueryExecutions(const Store& store, const std::string& condition);

/// The execution at which the rows of QueryExecutions() stand.
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
