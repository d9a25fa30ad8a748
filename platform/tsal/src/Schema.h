#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 3;

/// What numbers rows counts from 1 up to this, the last whole number up to which every program reads them all exactly.
inline constexpr long long highestKey = 9'007'199'254'740'992;

/// Says in the store that it has a version from now on.
void AddVersion(soci::session& sql, int version);

}  // namespace Quor::TolvaServices::Local
