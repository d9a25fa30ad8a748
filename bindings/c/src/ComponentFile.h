#pragma once

#include <string>

namespace Velora::CInterface {

/// The file of the component that this process has in memory; empty if the system does not know it.
std::string ComponentFile();

}  // namespace Velora::CInterface
