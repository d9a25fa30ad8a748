#include "store/schema/Views.h"

namespace Velora::Store::Views {

// LATERAL makes the server look up the newest status for each selected execution; otherwise it would read all statuses.
const View& ExecutionStates() {
  static const View view = {"execution_states",
                            R"(SELECT e.execution_id, e.guid, e.parent_id, e.root_id, e.session_id, n.instrument,
              v.name AS activity_version, e.node, e.description, e.kind, e.started_at,
              s.code AS status, s.at AS status_at
       FROM executions e
       JOIN sessions n ON n.session_id = e.session_id
       JOIN statuses s ON s.status_id = (SELECT MAX(status_id) FROM statuses WHERE execution_id = e.execution_id)
       LEFT JOIN activity_versions v ON v.version_id = e.version_id)",
                            R"(SELECT e.execution_id, e.guid, e.parent_id, e.root_id, e.session_id, n.instrument,
              v.name AS activity_version, e.node, e.description, e.kind, e.started_at,
              s.code AS status, s.at AS status_at
       FROM executions e
       JOIN sessions n ON n.session_id = e.session_id
       CROSS JOIN LATERAL (SELECT code, at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s
       LEFT JOIN activity_versions v ON v.version_id = e.version_id)"};
  return view;
}

const View& UnfinishedOfVersion1() {
  static const View view = {"unfinished",
                            R"(WITH RECURSIVE open(execution_id) AS (
         SELECT execution_id FROM execution_states WHERE status = 4
         UNION
         SELECT e.parent_id FROM executions e JOIN open o ON o.execution_id = e.execution_id
         WHERE e.parent_id IS NOT NULL)
       SELECT x.* FROM execution_states x JOIN open o ON o.execution_id = x.execution_id)"};
  return view;
}

// Asks only the executions that `running` names.
const View& Unfinished() {
  static const View view = {"unfinished",
                            R"(WITH RECURSIVE open(execution_id) AS (
         SELECT r.execution_id FROM running r
         WHERE 4 = (SELECT code FROM statuses WHERE execution_id = r.execution_id ORDER BY status_id DESC LIMIT 1)
         UNION
         SELECT e.parent_id FROM open o CROSS JOIN executions e
         WHERE e.execution_id = o.execution_id AND e.parent_id IS NOT NULL)
       SELECT x.* FROM open o CROSS JOIN execution_states x WHERE x.execution_id = o.execution_id)"};
  return view;
}

const View& Readings() {
  static const View view = {"readings",
                            R"(SELECT x.root_id, x.parent_id, x.execution_id, x.node, e.event_id, e.name AS event, e.at,
              p.position, p.name AS parameter, p.kind, p.value_text, p.value_number
       FROM parameters p
       JOIN events e ON e.event_id = p.event_id
       LEFT JOIN executions x ON x.execution_id = e.execution_id)"};
  return view;
}

const View& DurationsOfVersion2() {
  static const View view = {
      "durations",
      R"(SELECT execution_id, round((julianday(status_at) - julianday(started_at)) * 86400, 3) AS seconds
       FROM execution_states)",
      R"(SELECT e.execution_id, CAST(round(EXTRACT(EPOCH FROM CAST(s.at AS timestamptz) -
              CAST(e.started_at AS timestamptz)), 3) AS double precision) AS seconds
       FROM executions e
       CROSS JOIN LATERAL (SELECT at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s)"};
  return view;
}

// Durations in whole microseconds, rounded to milliseconds in the same way on both databases. A text that is not a time
// has no duration. In SQLite, strftime gets the seconds without their fraction, which it would round, and not the hour
// 24, which it would accept.
#define TIME \
  "'[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:[0-9][0-9].[0-9][0-9][0-9][0-9][0-9][0-9]Z'"
const View& Durations() {
  static const View view = {"durations",
                            "SELECT execution_id, CASE WHEN started_at GLOB " TIME " AND status_at GLOB " TIME
                            R"(
              AND max(substr(started_at, 12, 2), substr(status_at, 12, 2)) < '24' THEN
              ((strftime('%s', substr(status_at, 1, 19)) - strftime('%s', substr(started_at, 1, 19))) * 1000000
               + substr(status_at, 21, 6) - substr(started_at, 21, 6)
               + CASE WHEN status_at < started_at THEN -500 ELSE 500 END) / 1000 / 1000.0 END AS seconds
       FROM execution_states)",
                            R"(SELECT e.execution_id,
              (microseconds(s.at) - microseconds(e.started_at) + CASE WHEN s.at < e.started_at THEN -500 ELSE 500 END)
              / 1000 / CAST(1000 AS double precision) AS seconds
       FROM executions e
       CROSS JOIN LATERAL (SELECT at FROM statuses WHERE execution_id = e.execution_id
                           ORDER BY status_id DESC LIMIT 1) s)"};
  return view;
}
#undef TIME

}  // namespace Velora::Store::Views
