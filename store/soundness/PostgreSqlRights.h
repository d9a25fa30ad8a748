#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// Rights in a store on a server that go beyond those with which a role of hosts records, or anybody reads.
std::vector<std::string> RightsFindings(const Reader& store);

}  // namespace Velora::Store
