#pragma once

#include <string>
#include <vector>

namespace Velora::Ts {

class Store;

// What is wrong with a store whatever was recorded, one line each.

struct Findings {
  std::vector<std::string> wrong;
  std::string notCompared;  ///< What could not be looked at, and why; empty when everything was.

  void Add(const std::vector<std::string>& more) { wrong.insert(wrong.end(), more.begin(), more.end()); }
};

/// Tables, indexes, views, triggers and the like that are missing or not what they should be, and rights that go too
/// far.
Findings SchemaFindings(const Store& store);
/// Damage of the file, and rows without what they refer to.
std::vector<std::string> DamageFindings(const Store& store);
/// Values that no TS writes: numbers of rows that are none, and types that a column is not for.
std::vector<std::string> ValueFindings(const Store& store);

}  // namespace Velora::Ts
