#pragma once

#include "OpenStore.h"

#include <TSAL/Types.h>

namespace Quor::TolvaServices::Local {

/// Stores a new execution, or adds a known one's status to its history.
/// @return the execution's identity.
Types::Tsid StoreExecution(OpenStore& store, long long session, const Types::ActivityExecution& execution);

/// A stored execution with its newest status and without a link to its parent.
Types::ActivityExecution LoadExecution(OpenStore& store, const Types::Tsid& id);

/// The row of an execution.
/// @throws TsError naming the identity when it is none, or nobody knows it.
long long ExecutionRow(OpenStore& store, const Types::Tsid& id);

}  // namespace Quor::TolvaServices::Local
