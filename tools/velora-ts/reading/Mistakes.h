#pragma once

#include <string>
#include <vector>

namespace Velora::Ts {

class Store;

/// What looks like a mistake of a host in the newest thousand events and executions, one line each. TS takes all of it,
/// so nobody hears of it otherwise.
std::vector<std::string> LikelyMistakes(const Store& store);

}  // namespace Velora::Ts
