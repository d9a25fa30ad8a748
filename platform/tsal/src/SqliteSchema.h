#pragma once

#include "Schema.h"

namespace Quor::TolvaServices::Local {

/// Brings a file from one version up to another; an empty one has version 0. To be called in a transaction.
void BringUpSqliteSchema(soci::session& sql, int from, int to = schemaVersion);

}  // namespace Quor::TolvaServices::Local
