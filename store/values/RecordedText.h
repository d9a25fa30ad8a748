#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Store {

// What a recorded text says to a reader.

/// A stored text as the host gave it, in UTF-8: U+FFFD stands for a zero byte and for each byte that belongs to no
/// character.
std::string Readable(std::string_view stored);
/// Appends that.
void AppendReadable(std::string& readable, std::string_view stored);

/// The number that a text such as "3.10" stands for; hosts record numbers as texts to keep their digits. Nothing for
/// other texts and for numbers that cannot be drawn.
std::optional<double> NumberIn(std::string_view text);

}  // namespace Velora::Store
