#pragma once

#include <string>
#include <vector>

namespace Velora::Ts {

class Store;

/// What the role of the hosts calls with the rights of the store's owner.
inline constexpr const char* hostFunctions = "make_partitions()";

/// Rights in a store on a server that go beyond those with which a role of hosts records, or anybody reads.
std::vector<std::string> RightsFindings(const Store& store);

}  // namespace Velora::Ts
