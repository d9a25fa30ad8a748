#pragma once

#include <span>
#include <string_view>

namespace Velora::Page {

/// A part of the page in pieces: a compiler need not take a text of any length. `page/embed.js` makes them.
using FramePart = std::span<const std::string_view>;

/// What stands before the data of a page, and what behind it.
extern const FramePart frameHead, frameTail;

}  // namespace Velora::Page
