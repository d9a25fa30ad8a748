#pragma once

#include <string>
#include <vector>

class Store;

// What is wrong with a store whatever was recorded, one line each.

/// Tables, indexes, views and triggers that are missing or not what they should be.
std::vector<std::string> SchemaFindings(const Store& store);
/// Damage of the file, and rows without what they refer to.
std::vector<std::string> DamageFindings(const Store& store);
