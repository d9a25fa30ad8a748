#pragma once

#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
}

namespace Velora::Ts {

/// Likely mistakes of hosts in the newest thousand events and executions, one line each. TS accepts them, so hosts get
/// no error.
std::vector<std::string> LikelyMistakes(const Store::Reader& store);

}  // namespace Velora::Ts
