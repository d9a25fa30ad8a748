#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

// What is wrong with a store whatever was recorded, one line each.

struct Findings {
  std::vector<std::string> wrong;
  std::string notCompared;  ///< What could not be looked at, and why; empty when everything was.

  void Add(const std::vector<std::string>& more) { wrong.insert(wrong.end(), more.begin(), more.end()); }
};

/// Tables, indexes, views, triggers and the like that are missing or not what they should be, and rights that go too
/// far.
Findings SchemaFindings(const Reader& store);
/// Damage of the file, and rows without what they refer to.
/// @param working called now and then while it is looked for.
std::vector<std::string> DamageFindings(
    const Reader& store, const std::function<void()>& working = [] {});
/// Values that no TS writes: numbers of rows that are none, and types that a column is not for.
std::vector<std::string> ValueFindings(const Reader& store);

/// What rows of these months need beside the tables, and hosts should have made by now: a host that finds none for its
/// month cannot record.
std::vector<std::string> MissingRoom(const Reader& store);

}  // namespace Velora::Store
