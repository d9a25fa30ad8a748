#pragma once

#include <string>

namespace Velora::Windows {

/// The absolute path of the file that is mapped at an address, or the empty text. Read from the system's own table of
/// mappings: the name that the loader keeps may be relative to a directory that is no longer the current one.
std::string MappedFileAt(const void* address);

}  // namespace Velora::Windows
