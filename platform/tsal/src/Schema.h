#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 3;

/// Says in the store that it has a version from now on.
void AddVersion(soci::session& sql, int version);

}  // namespace Quor::TolvaServices::Local
