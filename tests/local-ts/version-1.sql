PRAGMA foreign_keys=OFF;
BEGIN TRANSACTION;
CREATE TABLE ts_schema (
         version    INTEGER NOT NULL,
         created_at TEXT NOT NULL);
INSERT INTO ts_schema VALUES(1,'2026-11-25T03:30:11.509763Z');
CREATE TABLE sessions (
         session_id INTEGER PRIMARY KEY,
         guid       TEXT NOT NULL UNIQUE,
         instrument TEXT NOT NULL,
         host       TEXT NOT NULL,
         began_at   TEXT NOT NULL,
         text1      TEXT NOT NULL,
         text2      TEXT NOT NULL,
         text3      TEXT NOT NULL);
INSERT INTO sessions VALUES(1,'bb4ad8cb-384c-4179-8a22-5d8e807a0783','veldmar-pc','veldmar-pc','2026-11-25T03:30:11.534763Z','','','');
CREATE TABLE activities (
         activity_id INTEGER PRIMARY KEY,
         guid        TEXT NOT NULL UNIQUE,
         name        TEXT NOT NULL,
         description TEXT NOT NULL,
         UNIQUE (name, description));
INSERT INTO activities VALUES(1,'5d21c6b0-09a4-49d9-a8b4-dc9b9e8d4c6f','Automation','What a host has done, as a whole');
INSERT INTO activities VALUES(2,'2d246c87-66e9-405e-937d-67c39efc94bb','Tilt series acquisition','One tilt series, from its first image to its last');
INSERT INTO activities VALUES(3,'a581e5e3-2baf-4d45-94c4-bd11ff149d1b','Section acquisition','One image of a series, or its frames');
CREATE TABLE activity_versions (
         version_id  INTEGER PRIMARY KEY,
         guid        TEXT NOT NULL UNIQUE,
         activity_id INTEGER NOT NULL REFERENCES activities,
         name        TEXT NOT NULL,
         version     TEXT NOT NULL,
         description TEXT NOT NULL,
         UNIQUE (activity_id, name, version, description));
INSERT INTO activity_versions VALUES(1,'b68e1c78-39ed-4056-a174-c4ec9ae73d53',1,'AutoFunction','1.0','The execution under which a host has everything hang');
INSERT INTO activity_versions VALUES(2,'a0081e79-3c9e-4d60-af3e-220894a18063',2,'TiltSeries','1.0','A series as its .mdoc file describes it');
INSERT INTO activity_versions VALUES(3,'e55bc85d-53b1-4889-8da6-340c7dc5eae0',3,'Section','1.0','A section as the .mdoc file of its series describes it');
CREATE TABLE registrations (
         session_id    INTEGER NOT NULL REFERENCES sessions,
         version_id    INTEGER NOT NULL REFERENCES activity_versions,
         file          TEXT NOT NULL,
         registered_at TEXT NOT NULL);
INSERT INTO registrations VALUES(1,1,'activities.xml','2026-11-25T03:30:11.552426Z');
INSERT INTO registrations VALUES(1,2,'activities.xml','2026-11-25T03:30:11.552426Z');
INSERT INTO registrations VALUES(1,3,'activities.xml','2026-11-25T03:30:11.552426Z');
CREATE TABLE configurations (
         configuration_id   INTEGER PRIMARY KEY,
         guid               TEXT NOT NULL UNIQUE,
         session_id         INTEGER NOT NULL REFERENCES sessions,
         saved_at           TEXT NOT NULL,
         configuration_text TEXT NOT NULL,
         text2              TEXT NOT NULL,
         vendor_name        TEXT NOT NULL,
         host_name          TEXT NOT NULL,
         option_text        TEXT NOT NULL,
         instrument_class   TEXT NOT NULL,
         model_name         TEXT NOT NULL,
         text8              TEXT NOT NULL,
         text9              TEXT NOT NULL);
INSERT INTO configurations VALUES(1,'ca181d9f-0e8d-4c77-a3d4-246c31fb1b5e',1,'2026-11-25T03:30:11.560401Z',replace('<?xml version="1.0" encoding="UTF-8"?>\n<!-- Kept with the record as it stands: write down here what a reader should know of the instrument in ten years. -->\n<Instrument>\n  <Note>Recorded from .mdoc files after the acquisition; the instrument is the one that the files name.</Note>\n</Instrument>\n','\n',char(10)),'','Brantor Scientific','veldmar-pc','','TEM','','','');
CREATE TABLE executions (
         execution_id INTEGER PRIMARY KEY,
         guid         TEXT NOT NULL UNIQUE,
         parent_id    INTEGER REFERENCES executions,
         root_id      INTEGER NOT NULL REFERENCES executions,
         session_id   INTEGER NOT NULL REFERENCES sessions,
         version_id   INTEGER REFERENCES activity_versions,
         node         TEXT NOT NULL,
         description  TEXT NOT NULL,
         kind         INTEGER NOT NULL,
         started_at   TEXT NOT NULL);
INSERT INTO executions VALUES(1,'0ecba827-35a5-470f-a7b0-0b386b6d5e3c',NULL,1,1,2,'grid.mdoc','/data/grid.mdoc',5,'2026-11-25T03:30:11.565196Z');
INSERT INTO executions VALUES(2,'61e227a4-e693-4a5a-8f3d-383620276c8f',1,1,1,3,'ZValue 0','grid.mdoc',0,'2026-11-25T03:30:11.572416Z');
INSERT INTO executions VALUES(3,'97e02185-1e7e-4885-8ff3-6bdadb2a99f2',1,1,1,3,'ZValue 1','grid.mdoc',0,'2026-11-25T03:30:11.584448Z');
CREATE TABLE statuses (
         status_id    INTEGER PRIMARY KEY,
         execution_id INTEGER NOT NULL REFERENCES executions,
         session_id   INTEGER NOT NULL REFERENCES sessions,
         code         INTEGER NOT NULL,
         at           TEXT NOT NULL);
INSERT INTO statuses VALUES(1,1,1,4,'2026-11-25T03:30:11.565196Z');
INSERT INTO statuses VALUES(2,2,1,4,'2026-11-25T03:30:11.572416Z');
INSERT INTO statuses VALUES(3,2,1,14,'2026-11-25T03:30:11.580428Z');
INSERT INTO statuses VALUES(4,3,1,4,'2026-11-25T03:30:11.584448Z');
INSERT INTO statuses VALUES(5,3,1,14,'2026-11-25T03:30:11.592456Z');
INSERT INTO statuses VALUES(6,1,1,14,'2026-11-25T03:30:11.596485Z');
CREATE TABLE events (
         event_id         INTEGER PRIMARY KEY,
         session_id       INTEGER NOT NULL REFERENCES sessions,
         execution_id     INTEGER REFERENCES executions,
         configuration_id INTEGER REFERENCES configurations,
         name             TEXT NOT NULL,
         at               TEXT NOT NULL);
INSERT INTO events VALUES(1,1,1,1,'Series','2026-11-25T03:30:11.568491Z');
INSERT INTO events VALUES(2,1,2,1,'ZValue','2026-11-25T03:30:11.576928Z');
INSERT INTO events VALUES(3,1,3,1,'ZValue','2026-11-25T03:30:11.588622Z');
CREATE TABLE parameters (
         event_id     INTEGER NOT NULL REFERENCES events,
         position     INTEGER NOT NULL,
         name         TEXT NOT NULL,
         kind         TEXT NOT NULL,
         value_text   TEXT,
         value_number REAL,
         PRIMARY KEY (event_id, position)) WITHOUT ROWID;
INSERT INTO parameters VALUES(1,1,'Voltage','int',NULL,300.0);
INSERT INTO parameters VALUES(2,1,'TiltAngle','double',NULL,0.5);
INSERT INTO parameters VALUES(2,2,'FramesOnDisk','bool',NULL,0.0);
INSERT INTO parameters VALUES(3,1,'TiltAngle','double',NULL,3.1000000000000000888);
INSERT INTO parameters VALUES(3,2,'Note','text','\x6974277320ff',NULL);
INSERT INTO parameters VALUES(3,3,'FramesOnDisk','bool',NULL,0.0);
CREATE INDEX registrations_by_session ON registrations (session_id);
CREATE INDEX configurations_by_time ON configurations (saved_at);
CREATE INDEX executions_by_parent ON executions (parent_id, started_at);
CREATE INDEX executions_by_root ON executions (root_id);
CREATE INDEX executions_by_time ON executions (started_at);
CREATE INDEX statuses_by_execution ON statuses (execution_id, status_id);
CREATE INDEX events_by_execution ON events (execution_id, event_id);
CREATE INDEX events_by_time ON events (at);
CREATE VIEW execution_states AS
       SELECT e.execution_id, e.guid, e.parent_id, e.root_id, e.session_id, n.instrument,
              v.name AS activity_version, e.node, e.description, e.kind, e.started_at,
              s.code AS status, s.at AS status_at
       FROM executions e
       JOIN sessions n ON n.session_id = e.session_id
       JOIN statuses s ON s.status_id = (SELECT MAX(status_id) FROM statuses WHERE execution_id = e.execution_id)
       LEFT JOIN activity_versions v ON v.version_id = e.version_id;
CREATE VIEW unfinished AS
       WITH RECURSIVE open(execution_id) AS (
         SELECT execution_id FROM execution_states WHERE status = 4
         UNION
         SELECT e.parent_id FROM executions e JOIN open o ON o.execution_id = e.execution_id
         WHERE e.parent_id IS NOT NULL)
       SELECT x.* FROM execution_states x JOIN open o ON o.execution_id = x.execution_id;
CREATE VIEW readings AS
       SELECT x.root_id, x.parent_id, x.execution_id, x.node, e.event_id, e.name AS event, e.at,
              p.position, p.name AS parameter, p.kind, p.value_text, p.value_number
       FROM parameters p
       JOIN events e ON e.event_id = p.event_id
       LEFT JOIN executions x ON x.execution_id = e.execution_id;
COMMIT;
