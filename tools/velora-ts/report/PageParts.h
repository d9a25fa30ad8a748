#pragma once

#include <span>
#include <string_view>

namespace Velora::Ts {

/// A file of the page in pieces: a compiler need not take a text of any length. Made by `embed.cmake` from `page/view/`.
using PagePart = std::span<const std::string_view>;

extern const PagePart pageFrame, pageStyle, pageScript, pageLibrary, pageLicences;

}  // namespace Velora::Ts
