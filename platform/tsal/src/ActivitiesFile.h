#pragma once

#include <TSAL/Types.h>

#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// The activity versions that a file describes, each with its activity, in the file's order and without identities.
/// @throws TsError naming file and line when the file cannot be used.
std::vector<Types::ActivityVersion> ReadActivitiesFile(const std::string& path);

}  // namespace Quor::TolvaServices::Local
