#pragma once

// What a store has on a server alone, by the version that brought it. In all of it {schema} stands for the name of the
// store's schema: a function that names a table takes that of its own schema, whatever the session's path, and one with
// its owner's rights takes none of what another may have made there under the name of PostgreSQL's own.

namespace Velora::Store::Server {

namespace Version2 {

extern const char* const eventNumbers;
extern const char* const refuseChange;
extern const char* const partitions;

}  // namespace Version2

namespace Version3 {

/// Locks what the rest changes, also while hosts of version 2 record.
extern const char* const locks;
extern const char* const microseconds;
extern const char* const textDigest;
extern const char* const keys;
extern const char* const partitions;
extern const char* const refusals;

}  // namespace Version3

}  // namespace Velora::Store::Server
