#pragma once

#include <TSAL/Types.h>

#include <soci/soci.h>

namespace Quor::TolvaServices::Local {

class Connection;

/// Stores a new execution, or adds a known one's status to its history.
/// @return the execution's identity.
Types::Tsid StoreExecution(Connection& connection, long long session, const Types::ActivityExecution& execution);

/// A stored execution with its newest status and without a link to its parent.
Types::ActivityExecution LoadExecution(Connection& connection, const Types::Tsid& id);

/// The row of an execution.
/// @throws TsError naming the identity when it is none, or nobody knows it.
long long ExecutionRow(soci::session& sql, const Types::Tsid& id);

}  // namespace Quor::TolvaServices::Local
