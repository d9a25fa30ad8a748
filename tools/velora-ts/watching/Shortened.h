#pragma once

#include "watching/Now.h"

#include <string>
#include <string_view>

namespace Velora::Ts {

/// How many characters of a stored text a query needs for Shortened().
inline constexpr const char* asLongAsShown = "405";

/// A stored text, cut to the length in which it is shown now; "…" is then its last character. The form for texts with
/// zero bytes or invalid UTF-8 stays what it is.
std::string Shortened(std::string_view stored);

}  // namespace Velora::Ts
