#pragma once

#include "OpenStore.h"
#include "store/settings/ActivitiesFile.h"

#include <TSAL/Types.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// Stores what is new among the versions and notes that the session registered them.
/// @param file the activities file, as the session named it.
/// @return the versions under their names, each with its identity and that of its activity.
std::map<std::string, Types::ActivityVersion> RegisterVersions(
    OpenStore& store, long long session, const std::string& file,
    const std::vector<Velora::Store::DescribedVersion>& versions);

/// A stored version with its activity. @param guid in lower case. @return null if this store does not know it.
std::shared_ptr<const VersionRecord> FindVersion(OpenStore& store, const std::string& guid);

/// The row of a version; none for an unset one. A version that this store does not know yet is added: it was registered
/// with another. Within a transaction.
std::optional<long long> VersionRow(OpenStore& store, const Types::ActivityVersion& version);

}  // namespace Quor::TolvaServices::Local
