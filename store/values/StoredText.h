#pragma once

#include <string>
#include <string_view>

// The form of texts in the columns of a store. Not every database can store zero bytes or invalid UTF-8, so a text with
// either is stored as "\x" and two hexadecimal digits for each byte. So is a text that begins with "\x", to keep the
// two apart. Other texts are stored unchanged. Equal texts have equal forms.

namespace Velora::Store {

/// The stored form of a text.
std::string ToStoredText(std::string_view text);
/// The text of a stored form.
std::string FromStoredText(std::string_view stored);

}  // namespace Velora::Store
