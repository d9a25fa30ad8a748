#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velora::Store {

class Connection;
class Reader;
struct Table;

// The checks of Soundness.h for a file.

std::vector<std::string> SqliteSchemaFindings(const Reader& store);
std::vector<std::string> SqliteDamageFindings(const Reader& store, const std::function<void()>& working);
/// Rows that refer to rows that do not exist.
std::vector<std::string> DanglingReferences(Connection& store);
/// A query for the rows with a value of the wrong type: the key of each row, and the column.
std::string SqliteWrongTypes(const Table& table);

}  // namespace Velora::Store
