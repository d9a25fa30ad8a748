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

/// On a server, the lock is an advisory one of a connection. Expressions for:
namespace ServerLock {

/// The upper half of its number, which is another one in each store. The lower half is the number of the session.
inline constexpr const char* ofStore = "CAST(CAST('session_locks' AS regclass) AS oid)";
/// Sessions with higher numbers have no lock.
inline constexpr long long highestSession = 0xFFFF'FFFF;
/// The beginning of the place: the store.
extern const char* const where;
/// The rest: what changes when the server may have taken locks away from hosts that live: when it was started, when it
/// started anew after a crash of one of its processes, and how many connections were ended from outside.
extern const char* const since;

}  // namespace ServerLock

}  // namespace Velora::Store
