#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Text {

/// How many bytes must be put in, left out or replaced to make one text from another.
std::size_t Distance(std::string_view one, std::string_view other);

/// The name that was probably meant by a mistyped or shortened one. Nothing if none is near.
std::optional<std::string> Nearest(std::string_view given, const std::vector<std::string>& names);

}  // namespace Velora::Text
