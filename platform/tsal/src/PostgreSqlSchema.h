#pragma once

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

/// Brings the current schema of a database up to `schemaVersion`; an empty one has version 0. To be called in a
/// transaction.
void BringUpPostgreSqlSchema(soci::session& sql, int from);

}  // namespace Quor::TolvaServices::Local
