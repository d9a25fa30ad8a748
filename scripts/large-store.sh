# shellcheck shell=bash
# Sourced by scripts that measure questions: fills an SQLite store that velora-ts prepared.

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
