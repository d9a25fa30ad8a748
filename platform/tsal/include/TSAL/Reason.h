#pragma once

#include <TSAL/Export.h>

#include <string>

// Of the local TS alone: a vendor's TSAL says this in its own way.

namespace Quor::TolvaServices {

/// Why TS cannot be used: what was behind the last answer of this process that the service is not present or not
/// connectable, and what to do. Empty when the last answer was yes, or none was asked for. May be called from any
/// thread.
TSAL_API std::string WhyNotAvailable();

}  // namespace Quor::TolvaServices
