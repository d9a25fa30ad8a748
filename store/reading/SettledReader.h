#pragma once

#include "store/reading/Reader.h"

namespace Velora::Store {

/// Opens a store for reading, in a state after which no row gets a lower number than the rows in it. On a server, this
/// needs the rights of the owner of the store, and hosts wait for milliseconds, or for half a second at a time while
/// another program adds rows in one transaction. @throws Error when that goes on.
Reader SettledReader(const Database& database);

}  // namespace Velora::Store
