#pragma once

#include <string>

namespace Velora::Store {

/// A new random guid (version 4), in lower case.
std::string NewGuid();

/// A given guid in lower case.
/// @param what what the guid identifies, for the error.
/// @throws Error, quoting the text, when it is not a guid.
std::string GuidOf(const std::string& given, const char* what);

}  // namespace Velora::Store
