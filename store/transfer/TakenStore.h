#pragma once

#include "store/database/Database.h"

#include <optional>
#include <string>

namespace Velora::Store {

class Connection;

// A store knows another one whose rows it takes in by its guid, and has a number for it (docs/forwarding.md).

/// The guid by which others know a store.
std::string GuidOf(Connection& store);

/// The number that the store with a guid has in another one: `thisStore` if both are the same; nothing if it has none.
std::optional<long long> NumberIn(Connection& store, const std::string& guid);

/// The number of the store with a guid, a new one if it has none, within the transaction that adds its row to `stores`.
/// Until that ends, others who need a number wait.
long long NumberFor(Database::Kind kind, Connection& store, const std::string& guid);

/// Takes the lock of the one who may add rows of a store to another one on a server, until the connection ends.
/// @return whether nobody else has it.
bool TakeLock(Connection& server, long long number);

}  // namespace Velora::Store
