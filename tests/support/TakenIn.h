#pragma once

#include <string>

namespace Velora::Store {
class Connection;
}

/// Statements that add the rows of a store to one that takes it in under a number. Nothing may refuse them.
/// @param from what stands before the names of the tables that have those rows: "other."; empty for the same tables.
/// @param guid what becomes of a guid, which must stay unique: "guid" if the rows are those of another store.
std::string TakingIn(long long number, const std::string& from, const std::string& guid = "guid");

/// Adds the own rows of a store once more, as those of another store, whose guids begin with the number. In a file,
/// what refuses them is removed meanwhile.
/// @param more statements that are then run as well.
void TakeInItself(Velora::Store::Connection& sql, long long number, const std::string& more = "");
