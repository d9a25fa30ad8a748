#pragma once

#include "Schema.h"

#include <array>

namespace soci {
class session;
}

namespace Quor::TolvaServices::Local {

/// The tables whose rows stay as they are.
inline constexpr std::array<const char*, 11> recordedTables = {
    "ts_schema",  "sessions", "activities", "activity_versions", "registrations", "configurations",
    "executions", "statuses", "events",     "parameters",        "seals"};

/// The body of the trigger function by which the database refuses to change them.
inline constexpr const char* refusal = " BEGIN RAISE EXCEPTION 'rows of % are only ever added', TG_ARGV[0]; END ";

/// Brings the current schema of a database from one version up to another; an empty one has version 0, and 2 is the
/// first that a server can have. To be called in a transaction.
void BringUpPostgreSqlSchema(soci::session& sql, int from, int to = schemaVersion);

}  // namespace Quor::TolvaServices::Local
