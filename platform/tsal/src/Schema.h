#pragma once

#include "store/schema/Versions.h"

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

using Velora::Store::schemaVersion;

/// Says in the store that it has a version from now on.
void AddVersion(soci::session& sql, int version);

}  // namespace Quor::TolvaServices::Local
