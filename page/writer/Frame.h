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

/// The page of a run.
/// @throws NotOffered when the program was built without pages; so do the others.
Frame RunFrame();
/// The page of a run that is served: without data, which it asks for.
Frame LiveRunFrame();
/// The page of statistics.
Frame StatisticsFrame();
/// The page of stores that are served. Its data is an object with the "version" of the program.
Frame StoreFrame();

using Write = std::function<void(std::string_view)>;

/// Writes a page.
/// @param writeData writes the data, as JSON.
void WriteFramed(const Frame& frame, const Write& write, const std::function<void(const Write& json)>& writeData);

}  // namespace Velora::Page
