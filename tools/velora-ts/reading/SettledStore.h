#pragma once

#include "reading/Store.h"

namespace Velora::Ts {

/// A state of a store after which no row comes with a lower number than those that it has. On a server this takes the
/// rights of the store's owner, and holds hosts up for milliseconds.
Store SettledStore(const Store::Database& database);

}  // namespace Velora::Ts
