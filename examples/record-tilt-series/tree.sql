-- The tree of executions, each with its newest status, its first and last time, and its first few parameters.
WITH RECURSIVE tree(execution_id, depth, place) AS (
  SELECT execution_id, 0, CAST(1000000000000 + execution_id AS TEXT) FROM executions WHERE parent_id IS NULL
  UNION ALL
  SELECT e.execution_id, t.depth + 1, t.place || '/' || CAST(1000000000000 + e.execution_id AS TEXT)
  FROM executions e JOIN tree t ON t.execution_id = e.parent_id)
SELECT substr('                                ', 1, 2 * t.depth) || x.node AS execution,
       x.activity_version AS activity,
       x.status || CASE x.status WHEN 4 THEN ' running' WHEN 14 THEN ' done' ELSE '' END AS status,
       x.started_at AS started,
       substr(x.status_at, 12, 15) AS updated,
       (SELECT group_concat(parameter || '=' || value, '  ')
        FROM (SELECT r.parameter,
                     CASE WHEN r.value_text IS NOT NULL THEN r.value_text
                          WHEN r.kind = 'double' THEN CAST(r.value_number AS TEXT)
                          ELSE CAST(CAST(r.value_number AS INTEGER) AS TEXT) END AS value
              FROM readings r WHERE r.execution_id = x.execution_id ORDER BY r.event_id, r.position LIMIT 3) AS first) AS parameters
FROM tree t JOIN execution_states x ON x.execution_id = t.execution_id
ORDER BY t.place;
