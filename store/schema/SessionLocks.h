#pragma once

#include "store/schema/Table.h"

#include <string>

namespace Velora::Store {

/// The table `session_locks` contains no records. It says which sessions have a lock that their host holds as long as
/// it lives, and where. A lock that is not held says that the host ended, but only where it is looked for in the same
/// place: a copy of the store has these rows, and no locks. A host that takes its lock again in another place adds a
/// row.
const Table& SessionLocks();

/// The file with the locks of a store in a file, whose path must be without links. The byte with the number of a
/// session is locked.
std::string LockFileOf(const std::string& store);

}  // namespace Velora::Store
