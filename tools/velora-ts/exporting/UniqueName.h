#pragma once

#include <set>
#include <string>

namespace Velora::Ts {

/// A name that is not among those in use, and is in use from then on: the given one, or that with a number behind it.
/// @param occurrence the number to begin with; 1 for the name as it is.
std::string UniqueName(std::set<std::string>& taken, const std::string& name, int occurrence = 1);

}  // namespace Velora::Ts
