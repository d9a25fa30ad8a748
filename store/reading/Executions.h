#pragma once

#include "store/reading/Rows.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// An execution with its newest status. Its texts are as stored.
struct Execution {
  long long key = 0;  ///< Of its row.
  std::string guid, node, description, startedAt;
  std::string instrument, host;
  std::string activity, version;    ///< Of its activity version; empty if it has none.
  std::optional<long long> status;  ///< The newest one.
  std::string statusAt;             ///< When it got that status.
};

/// A query for executions, whose rows ExecutionAt() reads.
/// @param condition begins with WHERE. It is about an execution e, its session n, its activity version v and the
/// activity a of that version.
/// @param more further columns, which follow from column `executionColumns` on.
/// @param longest of the texts only so many characters are read; 0 for all.
Rows QueryExecutions(const Reader& store, const std::string& condition, const std::vector<std::string>& more = {},
                     std::size_t longest = 0);
inline constexpr int executionColumns = 11;

/// The execution at which the rows of QueryExecutions() stand.
Execution ExecutionAt(const Rows& rows);

/// The codes of statuses that TS defines. Hosts can use others.
enum StatusCode : long long { Running = 4, Finished = 14 };

/// Whether the newest status is Running: the execution still runs, or its host ended before it did.
bool IsRunning(const Execution& execution);
/// The seconds from the start of an execution to its newest status. Nothing if it is running.
std::optional<double> SecondsOf(const Execution& execution);

}  // namespace Velora::Store
