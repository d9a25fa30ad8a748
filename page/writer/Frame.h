#pragma once

#include <functional>
#include <span>
#include <string_view>

namespace Velora::Page {

/// A part of a page, in pieces because compilers limit the length of a text. `page/embed.js` generates them.
using FramePart = std::span<const std::string_view>;

/// A page without its data.
struct Frame {
  FramePart beforeData, behindData, library, end;
};

extern const Frame runFrame;         ///< Of a run.
extern const Frame statisticsFrame;  ///< Of statistics.

using Write = std::function<void(std::string_view)>;

/// Writes a page.
/// @param writeData writes the data, as JSON.
void WriteFramed(const Frame& frame, const Write& write, const std::function<void(const Write& json)>& writeData);

}  // namespace Velora::Page
