#pragma once

#include <cstddef>
#include <string_view>

namespace Velora::Text {

/// Length of the UTF-8 sequence at the start of `rest`; 0 when there is no valid one. Neither overlong forms nor
/// surrogates nor points above U+10FFFF are valid.
std::size_t SequenceLength(std::string_view rest);

/// The character at the start of a text, and the bytes that it takes; one byte that is part of none counts as U+FFFD.
struct Character {
  explicit Character(std::string_view text);

  std::size_t length;
  char32_t code = 0xFFFD;
};

}  // namespace Velora::Text
