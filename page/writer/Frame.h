#pragma once

#include <span>
#include <string_view>

namespace Velora::Page {

/// A part of the page, in pieces because compilers limit the length of a text. `page/embed.js` generates them.
using FramePart = std::span<const std::string_view>;

/// The parts of a page before and after its data.
extern const FramePart frameHead, frameTail;

}  // namespace Velora::Page
