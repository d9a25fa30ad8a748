#pragma once

#include <optional>
#include <string_view>

namespace Velora::Ts {

/// The time that a recorded text states: "24-Nov-26  21:55:03", "24/Nov/2026:21:55:03 +0100", or as the store and the
/// tool write times. Without an offset it is local. The page of a run reads the same texts (page/view/stated-time.js).
/// @return microseconds since 1970, UTC; nothing for another text.
std::optional<long long> StatedTime(std::string_view text);

}  // namespace Velora::Ts
