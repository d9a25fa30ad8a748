#pragma once

#include <string>
#include <vector>

namespace Velora::Ts {

class Store;
struct StoredTable;

// What Soundness.h asks for, of a file.

std::vector<std::string> SqliteSchemaFindings(const Store& store);
std::vector<std::string> SqliteDamageFindings(const Store& store);
/// Asks for the rows that hold a value of another type than its column is for: their keys, and the column.
std::string SqliteWrongTypes(const StoredTable& table);

}  // namespace Velora::Ts
