#pragma once

#include "store/schema/Table.h"

namespace Velora::Store {

/// Every table of a store, in an order in which rows follow what they refer to. What a store is made of, copied as,
/// checked for and read by comes from here; docs/local-ts.md is held against it.
const std::vector<Table>& Tables();

/// @param name of a table that is there.
const Table& TableNamed(const std::string& name);

/// The tables that a version of the schema has.
std::vector<Table> TablesOf(int version);

/// The names of the tables that the role of hosts adds rows to.
std::vector<std::string> HostTables();

/// What the role of the hosts calls with the rights of the store's owner.
inline constexpr const char* hostFunctions = "make_partitions()";

}  // namespace Velora::Store
