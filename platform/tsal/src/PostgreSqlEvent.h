#pragma once

#include <TSAL/Types.h>

#include <soci/soci.h>

#include <optional>

namespace Quor::TolvaServices::Local {

/// Inserts an event and its parameters with one statement: the server may be far away. To be called in a transaction.
void InsertEvent(soci::session& sql, const Types::InstrumentEvent& event, long long session,
                 std::optional<long long> execution, std::optional<long long> configuration);

}  // namespace Quor::TolvaServices::Local
