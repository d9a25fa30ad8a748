#pragma once

#include "store/recording/Writer.h"
#include "store/settings/ActivitiesFile.h"

#include <TSAL/Types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// Stores what is new among the versions and notes that the session registered them.
/// @param file the activities file, as the session named it.
/// @return the versions under their names, each with its identity and that of its activity.
std::map<std::string, Types::ActivityVersion> RegisterVersions(
    Velora::Store::Writer& store, long long session, const std::string& file,
    const std::vector<Velora::Store::DescribedVersion>& versions);

/// The row of a version; none for an unset one. A version that this store does not know yet is added: it was registered
/// with another. Within a transaction.
std::optional<long long> VersionRow(Velora::Store::Writer& store, const Types::ActivityVersion& version);

/// The version of a row, with its activity.
Types::ActivityVersion LoadVersion(Velora::Store::Connection& sql, long long row);

}  // namespace Quor::TolvaServices::Local
