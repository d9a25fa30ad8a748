#pragma once

#include <string>

namespace Quor::TolvaServices::Local {

/// The statements that bring a schema of version 2 up to 3, also while hosts of version 2 record.
/// @param schema its name, quoted.
std::string PostgreSqlVersion3(const std::string& schema);

}  // namespace Quor::TolvaServices::Local
