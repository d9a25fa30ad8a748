#pragma once

#include <string>
#include <string_view>

namespace Velora::Ts {

/// Bytes as text, four characters for three of them.
std::string Base64(std::string_view bytes);

}  // namespace Velora::Ts
