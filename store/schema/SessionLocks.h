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
/// Then what changes when the server may have taken locks away from hosts that live: when it was started, when it
/// started anew after a crash of one of its processes, and how many connections to this database were ended from
/// outside.
extern const char* const since;
/// The rest: this, and the number of the connection's process.
inline constexpr const char* by = " by ";
/// A place with this before it says that this lock was not held any more when the server could still have kept it: its
/// host had ended. Hosts note that when they begin, because nobody can see it after the next restart of the server.
inline constexpr const char* ended = "ended: ";
/// The numbers of the locks that are held in this store.
extern const char* const held;

}  // namespace ServerLock

}  // namespace Velora::Store
