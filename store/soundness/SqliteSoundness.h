#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;
struct Table;

// The checks of Soundness.h for a file.

std::vector<std::string> SqliteSchemaFindings(const Reader& store);
std::vector<std::string> SqliteDamageFindings(const Reader& store, const std::function<void()>& working);
/// A query for the rows with a value of the wrong type: the key of each row, and the column.
std::string SqliteWrongTypes(const Table& table);

}  // namespace Velora::Store
