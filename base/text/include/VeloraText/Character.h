#pragma once

#include <cstddef>
#include <string_view>

namespace Velora::Text {

/// The length of the UTF-8 sequence at the start of `rest`; 0 if there is no valid sequence. Overlong forms, surrogates
/// and code points above U+10FFFF are not valid.
std::size_t SequenceLength(std::string_view rest);

/// The character at the start of a text, and its length in bytes. A byte that is part of no character counts as U+FFFD.
struct Character {
  explicit Character(std::string_view text);

  std::size_t length;
  char32_t code = 0xFFFD;
};

}  // namespace Velora::Text
