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
INSERT INTO seals VALUES(1,NULL,'2026-11-25T17:28:01.070908Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":0}','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":0,"status":0,"event":0,"parameter":0}','d5274a33633161e268136afcd55d95cba998d43d8af20fa40bacacfe29c3a73a','0000000000000000000000000000000000000000000000000000000000000000',2,'0.1.0','4807407f9593f077b1b8fd556a393be47287718364afc43f1e0363327e698236');
INSERT INTO seals VALUES(2,'0ecba827-35a5-470f-a7b0-0b386b6d5e3c','2026-11-25T17:28:01.070908Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":0}','{"schema":0,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":6,"event":3,"parameter":6}','51a194648e08e20b9f1dc9dfde802d3e285c36c9b2f49f45fdc1273e5b1df875','4807407f9593f077b1b8fd556a393be47287718364afc43f1e0363327e698236',2,'0.1.0','b330708e2ef295ca2cd2e898048ad49d15bb9657b8622df5916ce1942828b309');
INSERT INTO seals VALUES(3,NULL,'2026-11-25T17:28:01.171794Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":7,"event":5,"parameter":0}','{"schema":0,"session":0,"registration":0,"activity":0,"version":0,"configuration":0,"execution":0,"status":0,"event":1,"parameter":1}','3c785d781d4291f3a94107b8cb8a9a1861b7219d32ebeee02977b569334b1db5','b330708e2ef295ca2cd2e898048ad49d15bb9657b8622df5916ce1942828b309',2,'0.1.0','bb3fd2f6cdc6dd186d0eb0e38a1b303c5c4aec5a7756e9f26515ded3c92c1a01');
INSERT INTO seals VALUES(4,'0ecba827-35a5-470f-a7b0-0b386b6d5e3c','2026-11-25T17:28:01.171794Z','{"schema":2,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":3,"status":7,"event":5,"parameter":0}','{"schema":0,"session":1,"registration":3,"activity":3,"version":3,"configuration":1,"execution":0,"status":1,"event":1,"parameter":1}','7aa2e281c50f1de2a2ebc9326dae38ec94b99aa7ad81c4783c2210638acfdcd0','bb3fd2f6cdc6dd186d0eb0e38a1b303c5c4aec5a7756e9f26515ded3c92c1a01',2,'0.1.0','23071cc5b239cde8ab794e353ceac58486b1c104c783acfbb897973b60538246');
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
