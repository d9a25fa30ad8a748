#pragma once

#include <string>

namespace Velora::Store {

/// A new random guid (version 4), in lower case.
std::string NewGuid();

/// A guid that was given, in lower case.
/// @param what what it should identify, for the error.
/// @throws Error naming the text when it is not a guid.
std::string GuidOf(const std::string& given, const char* what);

}  // namespace Velora::Store
