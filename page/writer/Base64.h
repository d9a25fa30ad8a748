#pragma once

#include <string>
#include <string_view>

namespace Velora::Page {

/// The Base64 encoding of bytes: four characters for each three.
std::string Base64(std::string_view bytes);

}  // namespace Velora::Page
