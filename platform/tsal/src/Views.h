#pragma once

// The views that read the same on every database. Described in docs/local-ts.md; keep the two together.

namespace Quor::TolvaServices::Local::Views {

inline constexpr const char* unfinished =
    R"(CREATE VIEW unfinished AS
       WITH RECURSIVE open(execution_id) AS (
         SELECT execution_id FROM execution_states WHERE status = 4
         UNION
         SELECT e.parent_id FROM executions e JOIN open o ON o.execution_id = e.execution_id
         WHERE e.parent_id IS NOT NULL)
       SELECT x.* FROM execution_states x JOIN open o ON o.execution_id = x.execution_id)";

inline constexpr const char* readings =
    R"(CREATE VIEW readings AS
       SELECT x.root_id, x.parent_id, x.execution_id, x.node, e.event_id, e.name AS event, e.at,
              p.position, p.name AS parameter, p.kind, p.value_text, p.value_number
       FROM parameters p
       JOIN events e ON e.event_id = p.event_id
       LEFT JOIN executions x ON x.execution_id = e.execution_id)";

}  // namespace Quor::TolvaServices::Local::Views
