#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Store {

/// The Base64 encoding of bytes (RFC 4648, 4): four characters for each three, padded.
std::string ToBase64(std::string_view bytes);

/// The bytes of such an encoding; nothing for any other text, also one with spare bits or without padding.
std::optional<std::string> FromBase64(std::string_view text);

}  // namespace Velora::Store
