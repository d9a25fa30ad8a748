#pragma once

#include <set>
#include <string>

namespace Velora::Ts {

/// Makes a name unique: returns the name, or "name (N)" with the first N that makes it so, and adds it to `taken`.
/// @param occurrence the first N to try; with 1, the name without a number is tried first.
std::string UniqueName(std::set<std::string>& taken, const std::string& name, int occurrence = 1);

}  // namespace Velora::Ts
