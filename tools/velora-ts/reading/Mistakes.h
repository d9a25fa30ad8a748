#pragma once

#include <string>
#include <vector>

namespace Velora::Store {
class Reader;
}

namespace Velora::Ts {

/// What looks like a mistake of a host in the newest thousand events and executions, one line each. TS takes all of it,
/// so nobody hears of it otherwise.
std::vector<std::string> LikelyMistakes(const Store::Reader& store);

}  // namespace Velora::Ts
