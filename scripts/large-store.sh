# shellcheck shell=bash
# Sourced by scripts that measure questions: fills a store that velora-ts prepared.

# fill_large_store FILE: 1,000,000 executions in 25,000 runs, one beginning every hour from 2022 on. A run has 39
# executions below it; each of the forty has two events of five parameters, so there are 10,000,000 parameters. One run,
# in the middle, did not finish. The triggers that refuse changes are removed, because they would take most of the time;
# those that note what is running stay. Takes 1.5 GB.
fill_large_store() {
  sqlite3 "$1" "SELECT 'DROP TRIGGER ' || name || ';' FROM sqlite_master WHERE type = 'trigger' AND
    name NOT IN ('statuses_begin', 'statuses_end')" |
    sqlite3 "$1"
  sqlite3 -bail "$1" <<'END'
PRAGMA synchronous = OFF;
PRAGMA cache_size = -200000;
BEGIN;
INSERT INTO sessions SELECT value, 'session ' || value, 'Scope ' || value, 'host', '2022-01-01', '', '', ''
FROM generate_series(1, 20);
INSERT INTO activities VALUES (1, 'a', 'Tomography', '');
INSERT INTO activity_versions VALUES (1, 'v', 1, 'TiltSeries', '1.0', ''), (2, 'w', 1, 'Section', '1.0', '');
CREATE TEMP TABLE steps AS
SELECT value AS id, value % 40 AS step, value - value % 40 AS root, value / 40 % 20 + 1 AS session,
       strftime('%Y-%m-%dT%H:%M:%S.000000Z', '2022-01-01', (value / 40) || ' hours', (value % 40) || ' minutes') AS at
FROM generate_series(40, 1000039);
INSERT INTO executions
SELECT id, lower(hex(randomblob(4))) || '-0000-4000-8000-' || lower(hex(randomblob(6))),
       CASE WHEN step > 0 THEN root END, root, session, CASE step WHEN 0 THEN 1 ELSE 2 END,
       CASE id WHEN 480000 THEN 'Monday' ELSE 'ZValue ' || step END, '', CASE step WHEN 0 THEN 5 ELSE 0 END, at
FROM steps;
INSERT INTO statuses SELECT id * 2, id, session, 4, at FROM steps;
INSERT INTO statuses SELECT id * 2 + 1, id, session, 14, at FROM steps WHERE id <> 500007;
INSERT INTO events SELECT id * 2 + value, session, id, NULL, 'Section', at FROM steps, generate_series(0, 1);
INSERT INTO parameters
SELECT event_id, value, rtrim(substr('TiltAngleDefocus  Dose     StageX   StageY   ', value * 9 - 8, 9)), 'double',
       NULL, event_id % 1000 / 7.0
FROM events, generate_series(1, 5);
COMMIT;
END
}

# fill_large_server PARAMETERS DATABASE: so many parameters in four years. A run has 41 executions, one above the other
# forty; each of the forty has one event of four parameters.
fill_large_server() {
  psql --quiet --no-psqlrc --set=ON_ERROR_STOP=1 --set=runs=$(($1 / 160)) --dbname="$2" <<'END' >/dev/null
SET session_replication_role = replica;
SET synchronous_commit = off;
SELECT make_partition(CAST(to_char(TIMESTAMP '2022-01-01' + make_interval(months => month), 'YYYYMM') AS bigint))
FROM generate_series(0, 47) AS month;
INSERT INTO sessions SELECT s, md5(s::text), 'Scope ' || s % 20, 'host', '2022-01-01', '', '', ''
FROM generate_series(1, 1000) AS s;
INSERT INTO activities VALUES (1, 'a', 'Tomography', '');
INSERT INTO activity_versions VALUES (1, 'v', 1, 'TiltSeries', '1.0', ''), (2, 'w', 1, 'Section', '1.0', '');
CREATE TEMP TABLE steps AS
SELECT run * 41 + step + 1 AS id, step, CASE WHEN step > 0 THEN run * 41 + 1 END AS parent, run * 41 + 1 AS root,
       run % 1000 + 1 AS session,
       TIMESTAMP '2022-01-01' + INTERVAL '4 years' * run / :runs + step * INTERVAL '30 s' AS at
FROM generate_series(0, :runs - 1) AS run, generate_series(0, 40) AS step;
INSERT INTO executions
SELECT id, md5(id::text)::uuid::text, parent, root, session, CASE step WHEN 0 THEN 1 ELSE 2 END, 'ZValue ' || step, '',
       CASE step WHEN 0 THEN 5 ELSE 1 END, to_char(at, 'YYYY-MM-DD"T"HH24:MI:SS.US"Z"') FROM steps;
INSERT INTO statuses
SELECT id * 2 + n, id, session, CASE n WHEN 0 THEN 4 ELSE 14 END,
       to_char(at + n * INTERVAL '20 s', 'YYYY-MM-DD"T"HH24:MI:SS.US"Z"')
FROM steps, generate_series(0, 1) AS n;
INSERT INTO events
SELECT CAST(to_char(at, 'YYYYMM') AS bigint) * 10000000000 + id, session, id, NULL, 'Section',
       to_char(at, 'YYYY-MM-DD"T"HH24:MI:SS.US"Z"')
FROM steps WHERE step > 0;
INSERT INTO parameters
SELECT event_id, position, (ARRAY['TiltAngle', 'Defocus', 'ExposureDose', 'StageX'])[position], 'double', NULL,
       event_id % 1000 / 7.0 FROM events, generate_series(1, 4) AS position;
END
  psql --quiet --no-psqlrc --dbname="$2" --command="VACUUM ANALYZE"
}
