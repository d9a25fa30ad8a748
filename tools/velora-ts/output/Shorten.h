#pragma once

#include <cstddef>
#include <string>

namespace Velora::Ts {

/// Cuts a stored text behind so many characters. @return whether it was longer.
bool Shorten(std::string& text, std::size_t longest);

}  // namespace Velora::Ts
