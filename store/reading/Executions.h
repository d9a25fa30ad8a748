#pragma once

#include "store/reading/Rows.h"

#include <optional>
#include <string>

namespace Velora::Store {

/// An execution with its newest status.
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
Rows QueryExecutions(const Reader& store, const std::string& condition);

/// The execution at which the rows of QueryExecutions() stand.
Execution ExecutionAt(const Rows& rows);

/// Codes of statuses that say more than a number; others are a host's own.
enum StatusCode : long long { Running = 4, Finished = 14 };

/// Whether the newest status says that it has not ended.
bool IsRunning(const Execution& execution);
/// How long a finished one took.
std::optional<double> SecondsOf(const Execution& execution);

}  // namespace Velora::Store
