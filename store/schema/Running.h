#pragma once

namespace Velora::Store::Running {

// The table `running` says which executions can have 4, running, as their newest status. It is an index that neither
// database offers: without it, the few executions that did not finish are found only by asking all. Triggers keep it,
// so hosts of every version do. Hosts that set statuses of one execution at the same moment can leave a row behind, but
// none is ever missing: whoever reads the table asks for the newest status again.

/// Fills the table from the statuses.
inline constexpr const char* fill =
    "INSERT INTO running SELECT execution_id, status_id FROM statuses s WHERE code = 4 AND NOT EXISTS (SELECT 1 FROM "
    "statuses WHERE execution_id = s.execution_id AND status_id > s.status_id)";
/// Notes the new status of a trigger, if it is 4.
inline constexpr const char* note =
    "INSERT INTO running VALUES (NEW.execution_id, NEW.status_id) ON CONFLICT (execution_id) DO UPDATE SET status_id = "
    "excluded.status_id WHERE running.status_id < excluded.status_id";
/// Removes what is older than the new status of a trigger, if that is not 4.
inline constexpr const char* remove =
    "DELETE FROM running WHERE execution_id = NEW.execution_id AND status_id < NEW.status_id";

}  // namespace Velora::Store::Running
