#pragma once

#include "store/database/Database.h"
#include "verbs/ExitCode.h"

namespace Velora::Ts {

/// Sends what the store of a facility does not have yet of a file, compares all that it has of it with the file, and
/// says whether everything is there.
ExitCode SendAndCompare(const Store::Database& file, const Store::Database& facility);

}  // namespace Velora::Ts
