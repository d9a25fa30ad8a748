#pragma once

#include <string>

namespace Velora::CInterface {

/// The file of the library in memory that has this address; empty if the system does not know it.
std::string ModuleFile(const void* address);

}  // namespace Velora::CInterface
