#pragma once

#include <cstddef>
#include <string>

namespace Velora::CInterface {

/// The text of a caller.
/// @param name says which one, in the words of an error.
/// @throws Misuse if it cannot be a text.
std::string TextOf(const char* name, const char* data, std::size_t size);

}  // namespace Velora::CInterface
