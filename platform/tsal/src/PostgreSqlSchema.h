#pragma once

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// Brings the current schema of a database up to `schemaVersion`; an empty one has version 0. To be called in a
/// transaction.
void BringUpPostgreSqlSchema(soci::session& sql, int from);

}  // namespace Quor::TolvaServices::Local
