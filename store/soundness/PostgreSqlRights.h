#pragma once

#include <string>
#include <vector>

namespace Velora::Store {

class Reader;

/// Rights in a store on a server beyond those that a role of hosts needs to record and that others need to read.
std::vector<std::string> RightsFindings(const Reader& store);

}  // namespace Velora::Store
