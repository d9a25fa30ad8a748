#pragma once

#include "store/schema/Table.h"

namespace Velora::Store {

/// All tables of a store, each after the tables to which its rows refer. Making, copying, checking and reading a store
/// use this description; a test compares docs/local-ts.md with it.
const std::vector<Table>& Tables();

/// The table with a name.
/// @param name must be the name of a table.
const Table& TableNamed(const std::string& name);

/// The tables of a version of the schema, as it has them. Before version 3, what is unique per store was unique.
std::vector<Table> TablesOf(int version);

/// All tables except events and parameters, which are copied together.
std::vector<Table> TablesBesideEvents();

/// The names of the tables into which hosts record.
std::vector<std::string> RecordedByHosts();

/// The names of the tables into which the role of hosts may insert rows: it may also forward the rows of other stores.
std::vector<std::string> HostTables();

/// The functions that hosts call with the rights of the store's owner.
std::vector<std::string> HostFunctions();

}  // namespace Velora::Store
