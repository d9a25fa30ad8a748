#pragma once

#include <string>
#include <vector>

namespace Velora::HostCheck {

/// Loads the TS logging library as a host does, with the libraries below it.
/// @return for each library that cannot be loaded, the lowest first, which one it is and why; empty if all are.
std::vector<std::string> WhyNotLoaded(const std::string& library);

}  // namespace Velora::HostCheck
