#pragma once

#include <TSAL/Types.h>

#include <soci/soci.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

class Connection;

/// Stores what is new among the versions and notes that the session registered them.
/// @param file the activities file, as the session named it.
/// @return the versions under their names, each with its identity and that of its activity.
std::map<std::string, Types::ActivityVersion> RegisterVersions(Connection& connection, long long session,
                                                               const std::string& file,
                                                               const std::vector<Types::ActivityVersion>& versions);

/// The row of a version; none for an unset one. A version that this store does not know yet is added: it was registered
/// with another. To be called in a transaction.
std::optional<long long> VersionRow(Connection& connection, const Types::ActivityVersion& version);

/// The version of a row, with its activity.
Types::ActivityVersion LoadVersion(soci::session& sql, long long row);

}  // namespace Quor::TolvaServices::Local
