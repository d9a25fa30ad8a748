#pragma once

#include <string>

namespace Velora::Store {

/// Why TS counts as not installed on this computer; empty where it is present.
std::string WhyServiceIsAbsent();

}  // namespace Velora::Store
