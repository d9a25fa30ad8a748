#pragma once

#include "watching/Now.h"

#include <string>

namespace Velora::Ts {

/// What stores say, as one JSON object on one line: the answer of /api/now.
/// @param at the present time, as stored.
std::string NowAsJson(const Now& now, const std::string& at);

}  // namespace Velora::Ts
