#pragma once

#include "store/database/PostgreSqlConnection.h"

#include <string>

namespace Velora::Store {

// The locks by which others see that this process lives (SessionLocks.h), on a server. They are those of a connection
// of their own, one for each store, because connections that record are closed after errors and with their session. It
// stays open until the process ends; what the process forks closes it.

/// Takes the lock of a session, if this process does not hold it: at its beginning, and after the connection was lost.
/// Without the lock, the session is recorded all the same. After a failure, it is not tried again for a minute.
/// @param address the address of the store.
/// @param server the address of the server that has it now.
/// @param end when to give up.
void HoldOnServer(const std::string& address, const PostgreSqlConnection& server, long long session,
                  PostgreSqlConnection::Clock::time_point end) noexcept;

}  // namespace Velora::Store
