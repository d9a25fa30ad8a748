#pragma once

#include <string>
#include <string_view>

// How texts stand in the store's columns. A column takes neither zero bytes nor invalid UTF-8 on every database, so a
// text that has either is kept as "\x" and two hexadecimal digits for each of its bytes; so is a text that begins with
// "\x" itself, which keeps the two apart. Every other text stands as it is. Equal texts have equal forms.

namespace Velora::Store {

std::string ToStoredText(std::string_view text);
std::string FromStoredText(std::string_view stored);

}  // namespace Velora::Store
