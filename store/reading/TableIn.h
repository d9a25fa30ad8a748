#pragma once

#include <string>

namespace Velora::Store {

class Reader;
struct Table;

/// What to ask for the rows of a table: its name, or for a store whose version lacks the table a query without rows.
std::string TableIn(const Reader& store, const Table& table);

}  // namespace Velora::Store
