#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 2;

/// Brings a store from one version up to another; an empty database has version 0. To be called in a transaction.
void BringUpSchema(soci::session& sql, int from, int to = schemaVersion);

}  // namespace Quor::TolvaServices::Local
