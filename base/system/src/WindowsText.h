#pragma once

#include <string>
#include <string_view>

namespace Velora::System {

/// A text as Windows takes it. What is no UTF-8 becomes U+FFFD.
std::wstring Wide(std::string_view utf8);
/// The UTF-8 of a text of Windows. Half of a surrogate pair becomes U+FFFD.
std::string Utf8(std::wstring_view wide);

}  // namespace Velora::System
