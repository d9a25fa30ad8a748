#pragma once

#include "Schema.h"

namespace Quor::TolvaServices::Local {

/// Brings the current schema of a database from one version up to another; an empty one has version 0, and 2 is the
/// first that a server can have. To be called in a transaction.
void BringUpPostgreSqlSchema(soci::session& sql, int from, int to = schemaVersion);

}  // namespace Quor::TolvaServices::Local
