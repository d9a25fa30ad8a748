#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 2;

/// Brings a store up to that version: one of version 1, or an empty database, whose version is 0. To be called in a
/// transaction.
void BringUpSchema(soci::session& sql, int version);

}  // namespace Quor::TolvaServices::Local
