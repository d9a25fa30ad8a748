#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

// Faults of a store, one line each.

/// The faults of the schema.
struct Findings {
  std::vector<std::string> wrong;
  std::string notCompared;  ///< What could not be checked, and why; empty if everything was checked.

  void Add(const std::vector<std::string>& more) { wrong.insert(wrong.end(), more.begin(), more.end()); }
};

/// Tables, indexes, views, triggers and other objects that are missing or differ from a new store, and rights that are
/// too wide.
Findings SchemaFindings(const Reader& store);
/// Damage of the file, and rows that refer to missing rows.
/// @param working is called from time to time.
std::vector<std::string> DamageFindings(
    const Reader& store, const std::function<void()>& working = [] {});
/// Values that TS does not write: numbers of rows outside their range, and values of the wrong type.
std::vector<std::string> ValueFindings(const Reader& store);

/// What rows of these months need and hosts should have made by now: on a server, partitions. Without the partition of
/// its month, a host cannot record.
std::vector<std::string> MissingRoom(const Reader& store);

}  // namespace Velora::Store
