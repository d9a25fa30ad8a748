#pragma once

#include "store/reading/Reader.h"

namespace Velora::Store {

/// A state of a store after which no row comes with a lower number than those that it has. On a server this takes the
/// rights of the store's owner, and holds hosts up for milliseconds.
Reader SettledReader(const Database& database);

}  // namespace Velora::Store
