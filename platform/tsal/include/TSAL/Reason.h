#pragma once

#include <TSAL/Export.h>

#include <string>

// Only the local TS has this header: a vendor's TSAL reports its reasons in its own way.

namespace Quor::TolvaServices {

/// Why TS cannot be used: the reason for which IsTsServicePresent or IsConnectable last answered no in this process,
/// and what to do. Empty if the last answer was yes, or if neither was called. Can be called from any thread.
TSAL_API std::string WhyNotAvailable();

}  // namespace Quor::TolvaServices
