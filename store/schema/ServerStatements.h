#pragma once

// Statements for a server only, by the version that added them. {schema} stands for the name of the store's schema.
// Functions name it, so that they use the tables of their own schema whatever the path of the session is, and so that a
// function with the rights of its owner uses no object that somebody else made under the name of one of PostgreSQL's.

#include <string>

namespace Velora::Store::Server {

namespace Version2 {

extern const char* const eventNumbers;
extern const char* const refuseChange;
extern const char* const partitions;

}  // namespace Version2

namespace Version3 {

/// Locks what the other statements change, while hosts of version 2 may record, and ends the numbers of its rows.
extern const char* const locks;
extern const char* const microseconds;
extern const char* const textDigest;
extern const char* const keys;
extern const char* const partitions;
extern const char* const withEvents;
extern const char* const noteArrival;
/// The function that notes which executions did not finish.
std::string NoteRunning();
/// Lets everybody who may read executions read the new tables, and hosts add to them. A new store has no such roles.
extern const char* const rights;

}  // namespace Version3

}  // namespace Velora::Store::Server
