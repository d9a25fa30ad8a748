-- What a store of the second version has in addition to version-1.sql: two turns of seals, and rows between them.
BEGIN TRANSACTION;
INSERT INTO ts_schema VALUES(2,'2026-11-25T17:28:01.055652Z');
INSERT INTO statuses VALUES(7,1,1,14,'2026-11-26T09:00:00.000000Z');
INSERT INTO events VALUES(4,1,1,1,'late','2026-11-26T09:00:00.000000Z');
INSERT INTO events VALUES(5,1,NULL,NULL,'of no run','2026-11-26T09:00:01.000000Z');
INSERT INTO parameters VALUES(4,1,'Angle','double',NULL,-1.5);
INSERT INTO parameters VALUES(5,1,'T','text','a text',NULL);
CREATE TABLE seals (
         seal_id        INTEGER PRIMARY KEY,
         run            TEXT,
         sealed_at      TEXT NOT NULL,
         up_to          TEXT NOT NULL,
         counts         TEXT NOT NULL,
         content_hash   TEXT NOT NULL,
         previous_hash  TEXT NOT NULL,
         schema_version INTEGER NOT NULL,
         tool_version   TEXT NOT NULL,
         seal_hash      TEXT NOT NULL);
INSERT INTO seals VALUES(1,NULL,'2026-11-25T17:28:01.070908Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":0}','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":0,"status":0,"event":0,"parameter":0}','6b04a5445f3acaf72b0aaff1e11ea8805adbb5c8491aa2ec7673d80ed1c57978','0000000000000000000000000000000000000000000000000000000000000000',2,'0.1.0','2266c1873681001e20333463f3e2e4eb43cd800416f1c01967646a56d52c0c9e');
INSERT INTO seals VALUES(2,'0ecba827-35a5-470f-a7b0-0b386b6d5e3c','2026-11-25T17:28:01.070908Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":0}','{"schema":0,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":6}','1f25a2a25436beabe43a82be756b504809daccf0e93c7537241378933de6ae57','2266c1873681001e20333463f3e2e4eb43cd800416f1c01967646a56d52c0c9e',2,'0.1.0','333624fd8b6d652eb6aef31126e2993e6ac25cb9863c42d602f1b79de3040bd7');
INSERT INTO seals VALUES(3,NULL,'2026-11-25T17:28:01.171794Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":7,"event":5,"parameter":0}','{"schema":0,"session":0,"registration":0,"activity":0,"version":0,"configuration":0,"execution":0,"status":0,"event":1,"parameter":1}','3c785d781d4291f3a94107b8cb8a9a1861b7219d32ebeee02977b569334b1db5','333624fd8b6d652eb6aef31126e2993e6ac25cb9863c42d602f1b79de3040bd7',2,'0.1.0','e33fb8c08431d90276bed9d11c2dbc731128d1adb2fa93dfd8c284ec1419c4d9');
INSERT INTO seals VALUES(4,'0ecba827-35a5-470f-a7b0-0b386b6d5e3c','2026-11-25T17:28:01.171794Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":7,"event":5,"parameter":0}','{"schema":0,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":0,"status":1,"event":1,"parameter":1}','a77c6e4b155dc18a0024c7530e01834f26c317e0f560f603c44683106f005daa','e33fb8c08431d90276bed9d11c2dbc731128d1adb2fa93dfd8c284ec1419c4d9',2,'0.1.0','70b9248bd03d4313638ec52257d81e40c22d1e622490cdba63242a39fda5c109');
CREATE INDEX seals_by_run ON seals (run, seal_id);
CREATE VIEW durations AS
       SELECT execution_id, round((julianday(status_at) - julianday(started_at)) * 86400, 3) AS seconds
       FROM execution_states;
CREATE TRIGGER ts_schema_no_update BEFORE UPDATE ON ts_schema BEGIN SELECT RAISE(ABORT, 'rows of ts_schema are only ever added'); END;
CREATE TRIGGER ts_schema_no_delete BEFORE DELETE ON ts_schema BEGIN SELECT RAISE(ABORT, 'rows of ts_schema are only ever added'); END;
CREATE TRIGGER ts_schema_no_replace BEFORE INSERT ON ts_schema WHEN EXISTS (SELECT 1 FROM ts_schema WHERE rowid = NEW.rowid AND NEW.rowid > 0) BEGIN SELECT RAISE(ABORT, 'rows of ts_schema are only ever added'); END;
CREATE TRIGGER sessions_no_update BEFORE UPDATE ON sessions BEGIN SELECT RAISE(ABORT, 'rows of sessions are only ever added'); END;
CREATE TRIGGER sessions_no_delete BEFORE DELETE ON sessions BEGIN SELECT RAISE(ABORT, 'rows of sessions are only ever added'); END;
CREATE TRIGGER sessions_no_replace BEFORE INSERT ON sessions WHEN EXISTS (SELECT 1 FROM sessions WHERE (session_id = NEW.session_id AND NEW.session_id > 0) OR guid = NEW.guid) BEGIN SELECT RAISE(ABORT, 'rows of sessions are only ever added'); END;
CREATE TRIGGER activities_no_update BEFORE UPDATE ON activities BEGIN SELECT RAISE(ABORT, 'rows of activities are only ever added'); END;
CREATE TRIGGER activities_no_delete BEFORE DELETE ON activities BEGIN SELECT RAISE(ABORT, 'rows of activities are only ever added'); END;
CREATE TRIGGER activities_no_replace BEFORE INSERT ON activities WHEN EXISTS (SELECT 1 FROM activities WHERE (activity_id = NEW.activity_id AND NEW.activity_id > 0) OR guid = NEW.guid OR (name = NEW.name AND description = NEW.description)) BEGIN SELECT RAISE(ABORT, 'rows of activities are only ever added'); END;
CREATE TRIGGER activity_versions_no_update BEFORE UPDATE ON activity_versions BEGIN SELECT RAISE(ABORT, 'rows of activity_versions are only ever added'); END;
CREATE TRIGGER activity_versions_no_delete BEFORE DELETE ON activity_versions BEGIN SELECT RAISE(ABORT, 'rows of activity_versions are only ever added'); END;
CREATE TRIGGER activity_versions_no_replace BEFORE INSERT ON activity_versions WHEN EXISTS (SELECT 1 FROM activity_versions WHERE (version_id = NEW.version_id AND NEW.version_id > 0) OR guid = NEW.guid OR (activity_id = NEW.activity_id AND name = NEW.name AND version = NEW.version AND description = NEW.description)) BEGIN SELECT RAISE(ABORT, 'rows of activity_versions are only ever added'); END;
CREATE TRIGGER registrations_no_update BEFORE UPDATE ON registrations BEGIN SELECT RAISE(ABORT, 'rows of registrations are only ever added'); END;
CREATE TRIGGER registrations_no_delete BEFORE DELETE ON registrations BEGIN SELECT RAISE(ABORT, 'rows of registrations are only ever added'); END;
CREATE TRIGGER registrations_no_replace BEFORE INSERT ON registrations WHEN EXISTS (SELECT 1 FROM registrations WHERE rowid = NEW.rowid AND NEW.rowid > 0) BEGIN SELECT RAISE(ABORT, 'rows of registrations are only ever added'); END;
CREATE TRIGGER configurations_no_update BEFORE UPDATE ON configurations BEGIN SELECT RAISE(ABORT, 'rows of configurations are only ever added'); END;
CREATE TRIGGER configurations_no_delete BEFORE DELETE ON configurations BEGIN SELECT RAISE(ABORT, 'rows of configurations are only ever added'); END;
CREATE TRIGGER configurations_no_replace BEFORE INSERT ON configurations WHEN EXISTS (SELECT 1 FROM configurations WHERE (configuration_id = NEW.configuration_id AND NEW.configuration_id > 0) OR guid = NEW.guid) BEGIN SELECT RAISE(ABORT, 'rows of configurations are only ever added'); END;
CREATE TRIGGER executions_no_update BEFORE UPDATE ON executions BEGIN SELECT RAISE(ABORT, 'rows of executions are only ever added'); END;
CREATE TRIGGER executions_no_delete BEFORE DELETE ON executions BEGIN SELECT RAISE(ABORT, 'rows of executions are only ever added'); END;
CREATE TRIGGER executions_no_replace BEFORE INSERT ON executions WHEN EXISTS (SELECT 1 FROM executions WHERE (execution_id = NEW.execution_id AND NEW.execution_id > 0) OR guid = NEW.guid) BEGIN SELECT RAISE(ABORT, 'rows of executions are only ever added'); END;
CREATE TRIGGER statuses_no_update BEFORE UPDATE ON statuses BEGIN SELECT RAISE(ABORT, 'rows of statuses are only ever added'); END;
CREATE TRIGGER statuses_no_delete BEFORE DELETE ON statuses BEGIN SELECT RAISE(ABORT, 'rows of statuses are only ever added'); END;
CREATE TRIGGER statuses_no_replace BEFORE INSERT ON statuses WHEN EXISTS (SELECT 1 FROM statuses WHERE status_id = NEW.status_id AND NEW.status_id > 0) BEGIN SELECT RAISE(ABORT, 'rows of statuses are only ever added'); END;
CREATE TRIGGER events_no_update BEFORE UPDATE ON events BEGIN SELECT RAISE(ABORT, 'rows of events are only ever added'); END;
CREATE TRIGGER events_no_delete BEFORE DELETE ON events BEGIN SELECT RAISE(ABORT, 'rows of events are only ever added'); END;
CREATE TRIGGER events_no_replace BEFORE INSERT ON events WHEN EXISTS (SELECT 1 FROM events WHERE event_id = NEW.event_id AND NEW.event_id > 0) BEGIN SELECT RAISE(ABORT, 'rows of events are only ever added'); END;
CREATE TRIGGER parameters_no_update BEFORE UPDATE ON parameters BEGIN SELECT RAISE(ABORT, 'rows of parameters are only ever added'); END;
CREATE TRIGGER parameters_no_delete BEFORE DELETE ON parameters BEGIN SELECT RAISE(ABORT, 'rows of parameters are only ever added'); END;
CREATE TRIGGER parameters_no_replace BEFORE INSERT ON parameters WHEN EXISTS (SELECT 1 FROM parameters WHERE event_id = NEW.event_id AND position = NEW.position) BEGIN SELECT RAISE(ABORT, 'rows of parameters are only ever added'); END;
CREATE TRIGGER seals_no_update BEFORE UPDATE ON seals BEGIN SELECT RAISE(ABORT, 'rows of seals are only ever added'); END;
CREATE TRIGGER seals_no_delete BEFORE DELETE ON seals BEGIN SELECT RAISE(ABORT, 'rows of seals are only ever added'); END;
CREATE TRIGGER seals_no_replace BEFORE INSERT ON seals WHEN EXISTS (SELECT 1 FROM seals WHERE seal_id = NEW.seal_id AND NEW.seal_id > 0) BEGIN SELECT RAISE(ABORT, 'rows of seals are only ever added'); END;
COMMIT;
