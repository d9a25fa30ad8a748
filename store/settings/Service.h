#pragma once

#include <string>

namespace Velora::Store {

/// The reason why TS counts as not installed on this computer; empty if it is installed.
std::string WhyServiceIsAbsent();

}  // namespace Velora::Store
