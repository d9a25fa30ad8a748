#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// Faults in which row is from which store, one line each: rows of a store that the store does not know, rows with the
/// number 0, and references between rows of different stores, which nobody makes but by notes.
std::vector<std::string> OriginFindings(const Reader& store);

}  // namespace Velora::Store
