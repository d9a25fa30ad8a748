#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The version of the schema that this code makes and uses. What it holds is described in docs/local-ts.md.
inline constexpr int schemaVersion = 1;

/// Makes all tables, indexes and views. To be called in a transaction.
void CreateSchema(soci::session& sql);

}  // namespace Quor::TolvaServices::Local
