#pragma once

#include <string>

namespace Velora::Store {

class Reader;
struct Run;

// Which runs have an execution whose newest status is 4, running.

/// Whether the store notes which executions are running (Running.h). A store of an earlier version does not, nor does
/// one whose triggers somebody removed.
bool NotesRunning(const Reader& store);

/// The end of a query for executions x that are running, to which conditions can be added. If the store does not note
/// them, it asks every execution that the conditions leave.
std::string UnfinishedExecutions(const Reader& store);

/// A query for the roots of all runs that are not finished. If the store does not note them, it asks every execution.
std::string UnfinishedRuns(const Reader& store);

/// A condition in a query: whether the run with this root is not finished.
/// @param root an expression for the key of the root.
std::string UnfinishedCondition(const Reader& store, const std::string& root);

/// Whether a run is not finished.
bool IsUnfinished(const Reader& store, const Run& run);

}  // namespace Velora::Store
