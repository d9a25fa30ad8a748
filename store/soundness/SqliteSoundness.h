#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;
struct StoredTable;

// What Soundness.h asks for, of a file.

std::vector<std::string> SqliteSchemaFindings(const Reader& store);
std::vector<std::string> SqliteDamageFindings(const Reader& store, const std::function<void()>& working);
/// Asks for the rows that hold a value of another type than its column is for: their keys, and the column.
std::string SqliteWrongTypes(const StoredTable& table);

}  // namespace Velora::Store
