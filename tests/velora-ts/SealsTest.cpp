// Seals, tried as one who has the database file in hand and every trigger off.

#include "ToolTest.h"
#include "support/Patterns.h"
#include "support/TakenIn.h"

#include <sstream>
#include <vector>

namespace {

// After the run of the first version: another in a session of its own, and an event of no run.
constexpr const char* secondRun = R"(
INSERT INTO sessions VALUES (2, 'session-2', 'Veldmar', 'pc', '2026-11-26T08', 'one', 'two', 'three');
INSERT INTO registrations VALUES (2, 2, 'a.xml', '2026-11-26T08'), (2, 3, 'b.xml', '2026-11-26T08');
INSERT INTO configurations VALUES (2, 'config-2', 2, '2026-11-26T08', 'c', '', 'v', 'h', 'o', 'TEM', 'm', '', '');
INSERT INTO executions VALUES (4, 'run-2', NULL, 4, 2, 2, 'second', 'd', 5, '2026-11-26T09'),
  (5, 'step-2', 4, 4, 2, NULL, 'step', '', 0, '2026-11-26T10'),
  (6, 'step-3', 4, 4, 2, NULL, 'stop', '', 0, '2026-11-26T11');
INSERT INTO statuses VALUES (7, 4, 2, 4, '2026-11-26T09'), (8, 5, 2, 4, '2026-11-26T10'),
  (9, 5, 2, 14, '2026-11-26T11'), (10, 4, 2, 14, '2026-11-26T12'), (11, 6, 2, 15, '2026-11-26T12');
INSERT INTO events VALUES (4, 2, 4, 2, 'e', '2026-11-26T09'), (5, 2, 5, 2, 'e', '2026-11-26T10'),
  (6, 2, NULL, NULL, 'of no run', '2026-11-26T11');
INSERT INTO parameters VALUES (4, 1, 'Angle', 'double', NULL, 1.5), (4, 2, 'N', 'double', 'NaN:7ff8000000000000', NULL),
  (4, 3, 'T', 'text', 'a text', NULL), (5, 1, 'On', 'bool', NULL, 1), (5, 2, 'Off', 'bool', NULL, 0),
  (6, 1, 'T', 'int', NULL, 77);
INSERT INTO notes VALUES (1, 1, 'Anna', 'tag', 'good', '2026-11-26T12'), (2, 4, 'Bo', 'cause', 'dry', '2026-11-26T13');
INSERT INTO stores VALUES (2, 'store-2', '2026-11-26T13', 'store-1', '');
WITH RECURSIVE enough(n) AS (SELECT 1001 UNION ALL SELECT n + 1 FROM enough WHERE n < 1300)
INSERT INTO sessions SELECT n, 'session-' || n, '', '', '', '', '', '' FROM enough;  -- for a part of the tree
)";

// Arrives after the first seals: more of the first run, and a third.
constexpr const char* thirdRun = R"(
INSERT INTO statuses VALUES (12, 1, 2, 14, '2026-11-27T09');
INSERT INTO events VALUES (7, 2, 1, 2, 'late', '2026-11-27T09');
INSERT INTO parameters VALUES (7, 1, 'P', 'double', NULL, 1e400);
INSERT INTO executions VALUES (7, 'run-3', NULL, 7, 2, 2, 'third', '', 5, '2026-11-27T10');
INSERT INTO statuses VALUES (13, 7, 2, 14, '2026-11-27T10');
INSERT INTO events VALUES (8, 2, 7, NULL, 'e', '2026-11-27T10'), (9, 2, NULL, 2, 'of no run', '2026-11-27T11');
INSERT INTO notes VALUES (3, 1, 'Anna', 'review', 'late', '2026-11-27T12');
)";

class Seals : public ToolTest {
 protected:
  Seals() {
    BringUp();
    EXPECT_EQ(Sql(secondRun), 0) << said;
    EXPECT_EQ(Shell(SOURCE "/tests/velora-ts/authority make"), 0) << said;
    EXPECT_EQ(Tool("seal --anchor early"), 0) << said;
    for (const char* const signer : {"ines", "bo"}) {
      SignAndStamp(signer);
    }
    EXPECT_EQ(Sql(thirdRun), 0) << said;
    EXPECT_EQ(Tool("seal --anchor anchor"), 0) << said;
    SignAndStamp("dana");
    EXPECT_EQ(Shell("cp ts.db sealed.db"), 0);
  }

  /// Signs the newest seal with a new key, and has the signature stamped.
  void SignAndStamp(const std::string& signer) {
    EXPECT_EQ(Shell("openssl genpkey -algorithm ed25519 -out " + signer + ".pem; velora-ts seal --key " + signer +
                    ".pem --signer " + signer +
                    " --timestamp-query query | sed -n 's/.* by //p' >>signers; " SOURCE
                    "/tests/velora-ts/authority answer query answer; velora-ts seal --timestamp answer"),
              0)
        << said;
  }

  /// The triggers that refuse changes. The others note what is running.
  static constexpr const char* guards = "type = 'trigger' AND name NOT IN ('statuses_begin', 'statuses_end')";

  /// Runs statements with another program while the triggers are off.
  int Sql(const std::string& statements, const std::string& store = "ts.db") {
    const std::string drops =
        Query(folder / store,
              "SELECT group_concat('DROP TRIGGER ' || name, ';') FROM sqlite_master WHERE " + std::string(guards));
    const std::string makes =
        Query(folder / store, "SELECT group_concat(sql, ';') FROM sqlite_master WHERE " + std::string(guards));
    folder.Write("script", "PRAGMA synchronous = OFF;" + drops + ";" + statements + ";" + makes + ";");
    return Shell("sqlite3 -bail " + store + " < script");
  }
  void Restore() { EXPECT_EQ(Shell("rm -f ts.db-*; cp sealed.db ts.db"), 0); }
};

struct Alteration {
  std::string table;
  std::string statements;
  std::string found = "was altered";
};

/// A trigger that drops parameters, with its row in the table of the schema changed.
std::string Hidden(const std::string& how) {
  return "CREATE TRIGGER mine BEFORE INSERT ON parameters BEGIN SELECT RAISE(IGNORE); END; PRAGMA writable_schema = "
         "ON; "
         "UPDATE sqlite_master SET " +
         how + " WHERE name = 'mine'; PRAGMA writable_schema = RESET";
}

/// Statements that keep a value as it is given in a column that would make it a whole number.
std::string WithoutTypes(const std::string& column, const std::string& statements) {
  const auto declare = [](const std::string& from, const std::string& to) {
    return "PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, '" + from + "', '" + to +
           "') WHERE type = 'table'; PRAGMA writable_schema = RESET; ";
  };
  const std::string whole = column + "         INTEGER", any = column + "         BLOB";
  return declare(whole, any) + statements + "; " + declare(any, whole);
}

/// Statements that a query makes, each found by the same words.
std::vector<Alteration> Made(const std::filesystem::path& store, const std::string& query, const std::string& found) {
  std::vector<Alteration> made;
  std::istringstream lines(Query(store, query));
  for (std::string table, statement; std::getline(lines, table, '|') && std::getline(lines, statement);) {
    made.push_back({table, statement, found});
  }
  return made;
}

/// Changes every column that numbers no rows, in a row that is sealed.
constexpr const char* everyColumn =
    "SELECT t.name, 'UPDATE ' || t.name || ' SET ' || c.name || ' = ' || CASE c.type "
    "WHEN 'INTEGER' THEN 'CASE ' || c.name || ' WHEN 1 THEN 2 ELSE 1 END' "
    "WHEN 'TEXT' THEN 'COALESCE(' || c.name || ', '''') || ''x''' ELSE c.name || ' + 1' END || ' WHERE ' || "
    "CASE t.name WHEN 'parameters' THEN 'event_id = 4 AND position = 1' WHEN 'tree_parts' THEN 'rowid = 1' ELSE "
    "'rowid = (SELECT MIN(rowid) FROM ' || t.name || ' WHERE rowid >= 2)' END "
    "FROM sqlite_master t JOIN pragma_table_info(t.name) c WHERE t.type = 'table' AND t.name NOT IN ('running', "
    "'session_locks', 'arrivals') AND c.pk = 0";
/// Inserts a row into every table, below the numbers that seals cover.
constexpr const char* everyTable =
    "SELECT t.name, 'INSERT INTO ' || t.name || ' (rowid, ' || group_concat(c.name) || ') SELECT "
    "-9223372036854775808, ' || group_concat(c.name || iif(c.name IN ('guid', 'name'), ' || ''x''', '')) || ' FROM ' "
    "|| t.name || ' WHERE rowid >= ' || iif(t.name = 'tree_parts', 1, 2) || ' ORDER BY rowid LIMIT 1' FROM "
    "sqlite_master t JOIN pragma_table_info(t.name) c "
    "WHERE t.type = 'table' AND t.name NOT IN ('parameters', 'running', 'session_locks', 'arrivals') AND c.pk = 0 "
    "GROUP BY t.name";

// What is only added under a new number looks as if a host had recorded it, and is found as not sealed.
constexpr const char* unsealedRest = "not sealed: what belongs to no run";
constexpr const char* unsealedRun = "not sealed: run run-2";

const std::vector<Alteration> alterations = {
    {"ts_schema", "DELETE FROM ts_schema WHERE version = 1"},
    {"ts_schema", "INSERT INTO ts_schema VALUES (2, '')", unsealedRest},
    {"stores", "DELETE FROM stores WHERE store_id = 2"},
    {"stores", "INSERT INTO stores VALUES (3, 'store-3', '', NULL, NULL)", unsealedRest},
    {"sessions", "DELETE FROM sessions WHERE session_id = 2", "refers to a row of sessions that does not exist"},
    {"sessions",
     "UPDATE sessions SET guid = 'x' WHERE session_id = 1; UPDATE sessions SET guid = (SELECT guid FROM sessions WHERE "
     "session_id = 1) || 'y' WHERE session_id = 2"},
    {"sessions",
     "UPDATE sessions SET session_id = 9 WHERE session_id = 2; UPDATE registrations SET session_id = 9 WHERE "
     "session_id "
     "= 2; UPDATE configurations SET session_id = 9 WHERE session_id = 2; UPDATE executions SET session_id = 9 WHERE "
     "session_id = 2; UPDATE statuses SET session_id = 9 WHERE session_id = 2; UPDATE events SET session_id = 9 WHERE "
     "session_id = 2"},
    {"sessions", "INSERT INTO sessions VALUES (NULL, 'new', '', '', '', '', '', '')", unsealedRest},
    {"sessions", "INSERT INTO sessions VALUES (-5, 'new', '', '', '', '', '', '')"},
    {"registrations", "DELETE FROM registrations WHERE rowid = 5"},
    {"registrations", "UPDATE registrations SET rowid = 9 WHERE rowid = 1"},
    {"registrations", "UPDATE registrations SET version_id = 5 - version_id WHERE session_id = 2"},
    {"registrations", "INSERT INTO registrations VALUES (2, 1, '', '')", unsealedRest},
    {"activities", "DELETE FROM activities WHERE activity_id = 2"},
    {"activities",
     "UPDATE activities SET activity_id = 9 WHERE activity_id = 2; UPDATE activity_versions SET activity_id = 9 WHERE "
     "activity_id = 2"},
    {"activities", "INSERT INTO activities VALUES (NULL, 'new', '', '')", unsealedRest},
    {"activity_versions", "DELETE FROM activity_versions WHERE version_id = 2"},
    {"activity_versions", "UPDATE activity_versions SET activity_id = 5 - activity_id WHERE activity_id > 1"},
    {"activity_versions", "INSERT INTO activity_versions VALUES (NULL, 'new', 1, '', '', '')", unsealedRest},
    {"configurations", "DELETE FROM configurations WHERE configuration_id = 1"},
    {"configurations",
     "UPDATE configurations SET configuration_id = 9 WHERE configuration_id = 2; UPDATE events SET configuration_id = "
     "9 "
     "WHERE configuration_id = 2"},
    {"configurations", "INSERT INTO configurations VALUES (NULL, 'new', 1, '', '', '', '', '', '', '', '', '', '')",
     unsealedRest},
    {"executions", "UPDATE executions SET node = CAST(node AS BLOB) WHERE execution_id = 4"},
    {"executions", "UPDATE executions SET description = 'd' || char(0) WHERE execution_id = 4"},
    {"executions", "UPDATE executions SET version_id = NULL WHERE execution_id = 4"},
    {"executions", "UPDATE executions SET parent_id = 5 WHERE execution_id = 6"},
    {"executions", "UPDATE executions SET guid = 'other' WHERE execution_id = 4", "run run-2 is missing"},
    {"executions", "DELETE FROM executions WHERE execution_id = 6; DELETE FROM statuses WHERE execution_id = 6"},
    {"executions",
     "DELETE FROM parameters WHERE event_id IN (4, 5); DELETE FROM events WHERE event_id IN (4, 5); DELETE FROM "
     "statuses "
     "WHERE execution_id BETWEEN 4 AND 6; DELETE FROM executions WHERE root_id = 4",
     "run run-2 is missing"},
    {"executions", "UPDATE executions SET parent_id = 7, root_id = 7 WHERE execution_id = 6"},
    {"executions", "UPDATE executions SET root_id = 7 WHERE execution_id = 6",
     "has a root that is not that of its parent"},
    {"executions", "UPDATE executions SET parent_id = 7 WHERE execution_id = 4", "run run-2 is missing"},
    {"executions",
     "UPDATE executions SET node = CASE node WHEN 'step' THEN 'stop' ELSE 'step' END WHERE parent_id = 4"},
    {"executions",
     "UPDATE executions SET execution_id = 99 WHERE execution_id = 6; UPDATE statuses SET execution_id = 99 WHERE "
     "execution_id = 6"},
    {"executions",
     "INSERT INTO executions VALUES (NULL, 'new', 4, 4, 2, NULL, '', '', 0, ''); INSERT INTO statuses VALUES (NULL, 8, "
     "2, "
     "14, '')",
     unsealedRun},
    {"executions", "INSERT INTO executions VALUES (NULL, 'new', NULL, 8, 2, NULL, '', '', 0, '')",
     "not sealed: run new"},
    {"executions", "INSERT INTO executions VALUES (8, 'new', 8, 8, 2, NULL, '', '', 0, '')",
     "has a root that has a parent"},
    {"statuses", "UPDATE statuses SET code = 14.5 WHERE status_id = 10"},
    {"statuses", "DELETE FROM statuses WHERE status_id = 11"},
    {"statuses", "DELETE FROM statuses WHERE status_id = 12"},
    {"statuses", "UPDATE statuses SET code = 18 - code WHERE execution_id = 5"},
    {"statuses", "UPDATE statuses SET status_id = 99 WHERE status_id = 9"},
    {"statuses", "UPDATE statuses SET status_id = -status_id WHERE execution_id = 5"},
    {"statuses", "INSERT INTO statuses VALUES (0, 4, 2, 4, '')"},
    {"statuses", "INSERT INTO statuses VALUES (NULL, 4, 2, 4, '')",
     "not sealed: run run-2 \"second\" of 2026-11-26 09:00:00.00:00, which is not finished"},
    {"events", "UPDATE events SET at = '2026-11-26T08' WHERE event_id = 6", "what belongs to no run was altered"},
    {"events", "UPDATE events SET name = 'Late' WHERE event_id = 7"},
    {"events", "UPDATE events SET execution_id = 6 WHERE event_id = 5"},
    {"events", "UPDATE events SET execution_id = NULL WHERE event_id = 5"},
    {"events", "UPDATE events SET execution_id = 4 WHERE event_id = 6"},
    {"events", "UPDATE events SET configuration_id = NULL WHERE event_id = 4"},
    {"events", "DELETE FROM events WHERE event_id = 5"},
    {"events", "DELETE FROM events WHERE event_id = 5; DELETE FROM parameters WHERE event_id = 5"},
    {"events", "UPDATE events SET execution_id = 9 - execution_id WHERE event_id IN (4, 5)"},
    {"events",
     "UPDATE events SET event_id = -9 + event_id WHERE event_id IN (4, 5); UPDATE events SET event_id = -event_id "
     "WHERE "
     "event_id < 0"},
    {"events",
     "UPDATE events SET event_id = 99 WHERE event_id = 5; UPDATE parameters SET event_id = 99 WHERE event_id = 5"},
    {"events", "INSERT INTO events VALUES (NULL, 2, 4, NULL, 'new', '')", unsealedRun},
    {"events", "INSERT INTO events VALUES (NULL, 2, NULL, NULL, 'new', '')", unsealedRest},
    {"events", "INSERT INTO events VALUES (-1, 2, 4, NULL, 'new', '')"},
    {"parameters", "UPDATE parameters SET value_number = 'forged' WHERE kind = 'bool' AND value_number = 0"},
    {"parameters", "UPDATE parameters SET value_number = 1.5000000000000002 WHERE event_id = 4 AND position = 1"},
    {"parameters", "UPDATE parameters SET value_number = 1e308 WHERE event_id = 7"},
    {"parameters", "UPDATE parameters SET value_text = 'NaN:7ff8000000000001' WHERE event_id = 4 AND position = 2"},
    {"parameters", "UPDATE parameters SET value_text = '1.5', value_number = NULL WHERE event_id = 4 AND position = 1"},
    {"parameters", "UPDATE parameters SET value_number = 0 WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET value_text = 'a text' || char(0) WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET value_text = CAST('a text' AS BLOB) WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET value_text = CAST(x'61ff' AS TEXT) WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET position = 9 WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET event_id = 5 WHERE event_id = 4 AND position = 3"},
    {"parameters", "UPDATE parameters SET value_number = 1 - value_number WHERE event_id = 5"},
    {"parameters", "DELETE FROM parameters WHERE event_id = 4 AND position = 3"},
    {"parameters", "DELETE FROM parameters WHERE event_id = 6", "what belongs to no run was altered"},
    {"parameters", "INSERT INTO parameters VALUES (4, 4, 'New', 'int', NULL, 1)"},
    {"parameters", "INSERT INTO parameters VALUES (999, 1, 'New', 'int', NULL, 1)", "refers to a row of events"},
    {"notes", "DELETE FROM notes WHERE note_id = 2", "covers 1 records 'note', 0 are stored"},
    {"notes", "DELETE FROM notes WHERE note_id = 3", "covers 1 records 'note', 0 are stored"},
    {"notes", "UPDATE notes SET note_id = 9 WHERE note_id = 2"},
    {"notes", "INSERT INTO notes VALUES (NULL, 4, '', '', 'new', '')", unsealedRun},
    {"notes", "INSERT INTO notes VALUES (NULL, 5, '', '', 'new', '')",
     "row 4 of notes is about an execution that is no run"},
    {"notes", "INSERT INTO notes VALUES (NULL, 99, '', '', 'new', '')", "refers to a row of executions"},
    {"seals", "UPDATE seals SET up_to = replace(up_to, '\"event\":9', '\"event\":99')", "seal 4 was altered"},
    {"seals", "UPDATE seals SET up_to = '' WHERE seal_id = 3", "seal 3 was altered"},
    {"seals", "UPDATE seals SET content_hash = seal_hash WHERE seal_id = 3", "seal 3 was altered"},
    {"seals", "UPDATE seals SET previous_hash = seal_hash WHERE seal_id = 3", "seal 3 was altered"},
    {"seals", "UPDATE seals SET run = 'run-3' WHERE seal_id = 3", "seal 3 was altered"},
    {"seals", "UPDATE seals SET seal_hash = content_hash WHERE seal_id = 3", "seal 3 was altered"},
    {"seals", "DELETE FROM seals WHERE seal_id = 1", "seal 1 is missing"},
    {"seals", "DELETE FROM seals WHERE seal_id = 4", "seal 4 is missing"},
    {"seals", "DELETE FROM seals WHERE seal_id = 6", "a signature or time stamp of seal 6, which is missing"},
    {"seals",
     "DELETE FROM seals WHERE seal_id = 6; DELETE FROM signatures WHERE seal = 6; DELETE FROM timestamps WHERE seal = "
     "6",
     "rows of tree_leaves and tree_parts are behind those of all seals"},
    {"seals",
     "DELETE FROM seals WHERE seal_id = 6; DELETE FROM signatures WHERE seal = 6; DELETE FROM timestamps WHERE seal = "
     "6; DELETE FROM tree_leaves WHERE seal = 6",
     "not sealed: run run-3"},
    {"tree_leaves", "DELETE FROM tree_leaves WHERE seal = 2",
     "hashes of seal 2 in tree_leaves and tree_parts are missing"},
    {"tree_leaves", "INSERT INTO tree_leaves VALUES (1, 2, '')",
     "hashes of seal 1 in tree_leaves and tree_parts are not"},
    {"tree_leaves", "INSERT INTO tree_leaves VALUES (9999, 6, '')", "1 rows of tree_leaves and tree_parts are behind"},
    {"tree_leaves", "UPDATE tree_leaves SET leaf_id = leaf_id + 9999", "hashes of seal 1 in tree_leaves and"},
    {"tree_parts", "DELETE FROM tree_parts", "in tree_leaves and tree_parts are not those of what it covers"},
    {"tree_parts", "INSERT INTO tree_parts VALUES (9999, '')", "1 rows of tree_leaves and tree_parts are behind"},
    {"signatures", "DELETE FROM signatures WHERE signature_id = 1"},
    {"signatures", "DELETE FROM signatures WHERE signature_id = 3", "time stamp 3 is of something else: seal 6"},
    {"signatures", "UPDATE signatures SET seal = 2 WHERE signature_id = 3",
     "signature 3 is not one of dana of this: seal 2"},
    {"signatures",
     "UPDATE signatures SET text = (SELECT text FROM signatures WHERE signature_id = 1) WHERE signature_id = 3",
     "signature 3 is not one of ines of this: seal 6"},
    {"signatures",
     "UPDATE signatures SET signature_id = -signature_id WHERE signature_id < 3; UPDATE signatures SET signature_id = "
     "3 + signature_id WHERE signature_id < 0"},
    {"signatures", "INSERT INTO signatures SELECT 9, 6, kind, text FROM signatures WHERE signature_id = 1",
     "signature 9 is not one of ines of this: seal 6"},
    {"signatures", "UPDATE signatures SET kind = 'ssh' WHERE signature_id = 3", "signature 3 was altered"},
    {"signatures", "UPDATE signatures SET text = text || 'x' WHERE signature_id = 3", "signature 3 was altered"},
    {"signatures", "UPDATE signatures SET text = 'Approved' || char(10) || char(10) || text WHERE signature_id = 3",
     "signature 3 was altered"},
    {"timestamps", "DELETE FROM timestamps WHERE timestamp_id = 1"},
    {"signatures", "DELETE FROM signatures WHERE signature_id = 3; DELETE FROM timestamps WHERE timestamp_id = 3",
     "not signed by who is believed: no seal behind seal 3"},
    {"timestamps",
     "UPDATE timestamps SET token = (SELECT token FROM timestamps WHERE timestamp_id = 1) WHERE timestamp_id = 3",
     "time stamp 3 is of something else: seal 6"},
    {"timestamps", "UPDATE timestamps SET token = replace(token, 'A', 'B') WHERE timestamp_id = 3",
     "time stamp 3 was altered"},
    {"timestamps", "UPDATE timestamps SET seal = 3 WHERE timestamp_id = 3",
     "time stamp 3 is of something else: seal 3"},
    {"seals", "UPDATE seals SET seal_id = -seal_id WHERE seal_id < 3", "seal 1 is missing"},
    {"seals", "UPDATE seals SET seal_id = seal_id + 10", "seal 1 is missing"},
    {"seals",
     "INSERT INTO seals SELECT 7, run, sealed_at, up_to, counts, content_hash, seal_hash, 2, '', '' FROM seals "
     "WHERE seal_id = 6",
     "seal 7 was altered"},
    {"schema", "DROP VIEW unfinished; CREATE VIEW unfinished AS SELECT * FROM execution_states WHERE false",
     "view unfinished is not as in a new store"},
    {"running", "INSERT INTO statuses VALUES (14, 7, 2, 4, '2026-11-28'); DELETE FROM running",
     "row 7 of executions did not finish, but running lacks it"},
    {"schema", "DROP TRIGGER statuses_begin", "trigger statuses_begin is missing"},
    {"schema", "DROP INDEX executions_by_root", "index executions_by_root is missing"},
    {"schema", "ALTER TABLE events ADD COLUMN note TEXT", "table events is not as in a new store"},
    {"statuses", WithoutTypes("code", "UPDATE statuses SET code = 14.0 WHERE status_id = 10"),
     "row 10 of statuses has a value of the wrong type in column code"},
    {"parameters", "INSERT INTO parameters VALUES (4, 1.5, 'New', 'int', NULL, 1)", "in column position"},
    {"parameters", "UPDATE parameters SET position = 0 WHERE event_id = 4 AND position = 3", "is not numbered from 1"},
    {"events", "INSERT INTO events VALUES (9223372036854775807, 2, 4, NULL, '', '')", "is not numbered from 1"},
    {"schema", "ANALYZE; CREATE INDEX mine ON events (name)", "^finding: index mine does not belong to a TS store"},
    {"schema", "CREATE TABLE mine (note); INSERT INTO mine VALUES ('')", "table mine does not belong to a TS store"},
    {"schema", Hidden("type = 'TRIGGER'"), "TRIGGER mine does not belong to a TS store"},
    {"schema", Hidden("name = 'sqlite_mine', sql = replace(sql, 'mine', 'sqlite_mine')"),
     "sqlite_mine does not belong to a TS store"},
    {"schema", "CREATE TRIGGER mine AFTER INSERT ON events BEGIN SELECT 1; END",
     "trigger mine does not belong to a TS store"},
};

TEST_F(Seals, EveryAlterationIsFoundAndAnUntouchedStoreGivesNoFinding) {
  EXPECT_EQ(Tool("verify --anchor anchor"), 0) << said;
  EXPECT_EQ(said,
            "3 signatures are not compared: --signers names nobody\n3 time stamps are not compared: --tsa names no "
            "authority\n6 seals verified: 0 findings, 0 not sealed\n");
  EXPECT_EQ(Shell("velora-ts export run-3 | sha256sum | cut -c1-64"), 0);
  EXPECT_EQ(said, Query(folder / "sealed.db", "SELECT content_hash FROM seals WHERE run = 'run-3'"));
  EXPECT_EQ(Shell("sqlite3 ts.db VACUUM"), 0);
  EXPECT_EQ(Tool("verify --anchor anchor"), 0) << said;
  std::vector<Alteration> all =
      Made(folder / "sealed.db", everyColumn, "altered|is missing|a root that|does not belong|the hashes of seal");
  EXPECT_GT(all.size(), 60U);
  for (const auto& more : {Made(folder / "sealed.db", everyTable, "is not numbered from 1"), alterations}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  for (const auto& [table, statements, found] : all) {
    SCOPED_TRACE(statements);
    Restore();
    ASSERT_EQ(Sql(statements), 0) << said;
    EXPECT_EQ(Tool("verify --signers signers --tsa authority.pem"), found.starts_with("not s") ? 4 : 1) << table;
    EXPECT_TRUE(HasMatch(said, found)) << said;
  }
  std::printf("%zu alterations found\n", all.size());

  Restore();
  ASSERT_EQ(Sql("INSERT INTO events VALUES (-9223372036854775808, 2, 4, NULL, 'left out', '')"), 0) << said;
  EXPECT_EQ(Shell("mkdir to; cp TSAL.config to"), 0);
  EXPECT_EQ(Tool("copy . to"), 3);
  EXPECT_TRUE(Says("cannot be copied: row -9223372036854775808 of events")) << said;
}

TEST_F(Seals, OnlyAnAnchorFindsAChainThatWasComputedAnewOrCutOff) {
  const std::string hash = ContentOf(folder / "anchor").substr(7, 64);
  const struct {
    std::string statements, then, found;
    int code;
  } rows[] = {
      {"UPDATE events SET name = 'E' WHERE event_id = 4; DELETE FROM seals WHERE seal_id > 2; DELETE FROM tree_leaves "
       "WHERE seal > 2; DELETE "
       "FROM signatures; DELETE FROM timestamps",
       "seal", "the seals were computed again", 0},
      {"UPDATE events SET name = 'E' WHERE event_id = 4; DELETE FROM seals; DELETE FROM tree_leaves; DELETE FROM "
       "tree_parts; DELETE FROM "
       "signatures; DELETE FROM "
       "timestamps; UPDATE stores SET previous_guid = 'none', "
       "previous_hash = '" +
           hash + "' WHERE store_id = 1",
       "seal", "the newest seals were deleted, or the anchor is of the store before, none", 4},
      {"DELETE FROM events WHERE event_id = 9; DELETE FROM events WHERE execution_id = 7; DELETE FROM statuses WHERE "
       "execution_id = 7; DELETE FROM executions WHERE execution_id = 7; DELETE FROM seals WHERE seal_id > 3; DELETE "
       "FROM tree_leaves WHERE seal > 3; DELETE "
       "FROM signatures WHERE seal > 3; DELETE FROM timestamps WHERE seal > 3",
       "check", "the newest seals were deleted", 4},
  };
  for (const auto& [statements, then, found, code] : rows) {
    Restore();
    ASSERT_EQ(Sql(statements), 0) << said;
    EXPECT_EQ(Tool(then), 0) << said;
    EXPECT_EQ(Tool("seal --anchor anchor"), 1);  // neither sealed over nor the anchor replaced
    EXPECT_TRUE(Says(found)) << said;
    EXPECT_EQ(Tool("verify"), code) << said;
    EXPECT_EQ(Tool("verify --anchor anchor"), 1);
    EXPECT_TRUE(Says(found)) << said;
  }
  Restore();
  EXPECT_EQ(Tool("verify --anchor early"), 0) << said;
}

TEST_F(Seals, NobodySignsATreeThatIsNotThatOfTheRecords) {
  EXPECT_EQ(Shell("openssl genpkey -algorithm ed25519 -out new.pem"), 0) << said;
  const struct {
    const char* seal;
    const char* command;
    const char* found;
    int code = 3;
  } rows[] = {
      {"2", "seal --key ines.pem --signer ines", "the tree is not the one that ines signed with seal 3; nothing was"},
      {"5", "seal --key ines.pem --signer ines",
       "the tree is not that of the records under seal 5; nothing was signed"},
      {"2", "seal --key new.pem --signer new", "the tree is not that of the records under seal 2; nothing was signed"},
      {"2", "seal --checkpoint checkpoint", "the tree is not that of the records under seal 2; nothing was signed"},
      {"0", "seal --key ines.pem --signer ines", "signed: seal 6 and all before it, by ines", 0},
      {"0", "seal --key dana.pem --signer dana", "signed already: seal 6 by dana", 0},
  };
  for (const auto& [seal, command, found, code] : rows) {
    SCOPED_TRACE(std::string(command) + seal);
    Restore();
    ASSERT_EQ(
        Sql(std::string("UPDATE tree_leaves SET hashes = iif(hashes LIKE 'A%', 'B', 'A') || substr(hashes, 2) WHERE "
                        "seal = ") +
            seal),
        0);
    EXPECT_EQ(Tool(command), code);
    EXPECT_TRUE(Says(found)) << said;
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "checkpoint"));
}

TEST_F(Seals, NobodySignsRecordsThatWereAlteredTogetherWithTheirLeaves) {
  // The leaves of another sealing of the altered record, but that of the seal as it was.
  const std::string alter = "UPDATE events SET name = 'x' WHERE event_id = 8";
  const std::string leaves = "sqlite3 ts.db 'SELECT hashes FROM tree_leaves WHERE seal = 6' | base64 -d";
  ASSERT_EQ(Sql(alter + "; DELETE FROM seals WHERE seal_id > 3; DELETE FROM tree_leaves WHERE seal > 3"), 0) << said;
  ASSERT_EQ(Shell("velora-ts seal && " + leaves + " | head -c -32 >forged"), 0) << said;
  Restore();
  ASSERT_EQ(Shell(leaves + " | tail -c 32 >>forged; base64 -w 0 forged"), 0);
  ASSERT_EQ(Sql(alter + "; UPDATE tree_leaves SET hashes = '" + said + "' WHERE seal = 6"), 0) << said;
  EXPECT_EQ(Tool("seal --key ines.pem --signer ines"), 3);
  EXPECT_TRUE(Says("what seal 6 covers was altered; nothing was signed")) << said;
}

TEST_F(Seals, WhatIsNotFinishedWaitsAndLateRowsGetASealOfTheirOwn) {
  ASSERT_EQ(Sql("INSERT INTO executions VALUES (8, 'run-4', NULL, 8, 2, 2, 'fourth', '', 5, '2026-11-28'), "
                "(9, 'step-4', 8, 8, 2, 2, '', '', 0, ''); "
                "INSERT INTO statuses VALUES (14, 8, 2, 14, ''), (15, 9, 2, 4, ''); "
                "INSERT INTO events VALUES (10, 2, 5, NULL, 'late', ''); "
                "INSERT INTO notes VALUES (4, 7, 'Anna', 'cause', 'late', '')"),
            0);
  const std::string before = Query(folder / "ts.db", "SELECT * FROM seals");
  EXPECT_EQ(Tool("seal"), 0);
  EXPECT_TRUE(Says("not sealed: run run-4 \"fourth\" of 2026-11-28 00:00:00+00:00 is not finished")) << said;
  EXPECT_EQ(Tool("verify --anchor anchor"), 4) << said;
  EXPECT_TRUE(
      Says("not sealed: run run-4 \"fourth\" of 2026-11-28 00:00:00+00:00, which is not finished\n9 seals verified"))
      << said;
  EXPECT_EQ(Query(folder / "ts.db", "SELECT * FROM seals WHERE seal_id < 7"), before);
  EXPECT_EQ(Query(folder / "ts.db",
                  "SELECT run, counts LIKE '%\"execution\":0,\"status\":0,\"event\":1,%' FROM seals "
                  "WHERE seal_id = 7"),
            "run-2|1\n");
  EXPECT_EQ(Query(folder / "ts.db",
                  "SELECT run, counts LIKE '%\"event\":0,\"parameter\":0,\"note\":1}' FROM seals WHERE seal_id = 8"),
            "run-3|1\n");
  // What was said of the seals before, too.
  EXPECT_EQ(Query(folder / "ts.db",
                  "SELECT run IS NULL, counts LIKE '%\"signature\":1,\"timestamp\":1}' FROM seals "
                  "WHERE seal_id = 9"),
            "1|1\n");
  EXPECT_EQ(Tool("seal --key dana.pem --signer dana"), 0) << said;
  EXPECT_EQ(Tool("prove run-2 -o two.proof"), 0) << said;
  EXPECT_EQ(Tool("prove --check two.proof --signers signers"), 0) << said;
  EXPECT_TRUE(HasMatch(said, "\"seal\",\"number\":3,(.*\n)*.*\"seal\",\"number\":7,(.*\n)*2 proofs checked: 0 "))
      << said;
}

TEST_F(Seals, WhatIsUnderTheNewestSealWithoutOneIsSealedToo) {
  const std::pair<const char*, const char*> rows[] = {
      {"INSERT INTO events VALUES (50, 2, 5, NULL, 'under', '')", "sealed: run run-2"},
      {"INSERT INTO statuses VALUES (50, 5, 2, 14, '')", "sealed: run run-2"},
      {"INSERT INTO executions VALUES (50, 'run-5', NULL, 50, 2, 2, '', '', 5, '')", "sealed: run run-5"},
      {"INSERT INTO notes VALUES (50, 4, '', '', 'under', '')", "sealed: run run-2"},
      {"DELETE FROM seals WHERE seal_id > 6; DELETE FROM tree_leaves WHERE seal > 6", "sealed: run run-4"},
  };
  for (const auto& [statements, sealed] : rows) {
    Restore();
    ASSERT_EQ(Sql("INSERT INTO executions VALUES (90, 'run-4', NULL, 90, 2, 2, 'fourth', '', 5, ''); INSERT INTO "
                  "statuses VALUES (90, 90, 2, 14, ''); INSERT INTO events VALUES (90, 2, 90, NULL, '', ''); "
                  "INSERT INTO notes VALUES (90, 90, '', '', '', '')"),
              0);
    EXPECT_EQ(Tool("seal"), 0) << said;
    ASSERT_EQ(Sql(statements), 0) << said;
    EXPECT_EQ(Tool("verify"), 4) << said;
    EXPECT_EQ(Tool("seal"), 0);
    EXPECT_TRUE(Says(sealed)) << statements << said;
    EXPECT_EQ(Tool("verify"), 0) << said;
  }
}

TEST_F(Seals, AStoreOfTheSecondVersionVerifiesBeforeAndAfterItIsBroughtUp) {
  folder.Write("anchor", "seal 4 70b9248bd03d4313638ec52257d81e40c22d1e622490cdba63242a39fda5c109\n");
  EXPECT_EQ(Shell("rm ts.db*; sqlite3 ts.db 'PRAGMA journal_mode = WAL' '.read " SOURCE
                  "/tests/local-ts/version-1.sql' '.read " SOURCE "/tests/local-ts/version-2.sql'; cp ts.db old.db"),
            0);
  EXPECT_EQ(Tool("verify --anchor anchor"), 0);
  EXPECT_EQ(said, "4 seals verified: 0 findings, 0 not sealed\n");
  ASSERT_EQ(Shell("sqlite3 ts.db \"INSERT INTO events VALUES (-1, 1, 1, NULL, 'forged', '')\""), 0);
  EXPECT_EQ(Tool("verify --anchor anchor"), 1);
  EXPECT_TRUE(Says("row -1 of events is not numbered from 1")) << said;
  EXPECT_EQ(Shell("rm ts.db*; mv old.db ts.db"), 0);
  BringUp();
  EXPECT_EQ(Tool("verify --anchor anchor"), 4);
  EXPECT_EQ(said, "not sealed: what belongs to no run\n4 seals verified: 0 findings, 1 not sealed\n");
  EXPECT_EQ(Tool("seal --anchor anchor"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor"), 0) << said;
  EXPECT_EQ(Query(folder / "ts.db", "SELECT COUNT(*) FROM seals WHERE counts || up_to LIKE '%note%'"), "0\n");
  EXPECT_EQ(Tool("seal --key ines.pem --signer ines"), 0) << said;
  EXPECT_EQ(Tool("prove last 1 -o old.proof"), 0) << said;  // of seals that knew no tree
  EXPECT_EQ(Tool("prove --check old.proof --signers signers"), 0) << said;
  EXPECT_EQ(Tool("verify --signers signers"), 0) << said;

  EXPECT_EQ(Shell("rm ts.db*; sqlite3 ts.db 'PRAGMA journal_mode = WAL' '.read " SOURCE
                  "/tests/local-ts/version-1.sql' '.read " SOURCE "/tests/local-ts/version-2.sql'"),
            0);
  ASSERT_EQ(Sql("UPDATE events SET name = 'forged' WHERE event_id = 1"), 0) << said;
  BringUp();
  EXPECT_EQ(Tool("seal"), 1);  // what was altered gets no place in the tree
  EXPECT_TRUE(Says(" covers was altered\nbecause of this, nothing was sealed")) << said;
}

/// The store of a facility, which took in that of the instrument, and has an event and a note of its own.
class SealsAtTheFacility : public Seals {
 protected:
  SealsAtTheFacility() {
    EXPECT_EQ(Shell("mkdir facility; cp TSAL.config facility; velora-ts prepare --config facility"), 0) << said;
    EXPECT_EQ(SqlThere("ATTACH 'sealed.db' AS other; " + TakingIn(2, "other.") +
                       "INSERT INTO sessions VALUES (1, 'own', 'Veldmar 3', '', '2026-11-28', '', '', '');"
                       "INSERT INTO events VALUES (1, 1, NULL, NULL, 'own', '2026-11-28');"
                       "INSERT INTO notes VALUES (1, 20000000004, 'Cleo', 'review', 'seen', '2026-11-28')"),
              0)
        << said;
    EXPECT_EQ(Tool("seal --config facility --anchor facility.anchor"), 0) << said;
    EXPECT_EQ(Shell("cp facility/ts.db sealed-there.db"), 0);
  }

  int SqlThere(const std::string& statements) { return Sql(statements, "facility/ts.db"); }
  void RestoreThere() { EXPECT_EQ(Shell("rm -f facility/ts.db-*; cp sealed-there.db facility/ts.db"), 0); }
};

TEST_F(SealsAtTheFacility, EachChainHoldsByItselfAndARunIsTheSameBytes) {
  EXPECT_EQ(Tool("verify --config facility --anchor anchor --anchor early --anchor facility.anchor"), 0) << said;
  EXPECT_TRUE(Says("8 seals verified: 0 findings, 0 not sealed\n")) << said;
  EXPECT_EQ(Tool("verify --config facility --signers signers --tsa authority.pem"), 4) << said;
  EXPECT_TRUE(
      HasMatch(said, "not signed by who is believed: no seal\n(.*\n)*.*seal 6 and all before it: signed by dana"))
      << said;
  EXPECT_EQ(Tool("prove 20000000004 run-2 --config facility -o two.proof"), 0) << said;
  EXPECT_EQ(Tool("prove --check two.proof --signers signers --tsa authority.pem"), 0) << said;
  EXPECT_TRUE(HasMatch(said, "\"record\":\"event\",\"number\":4,(.*\n)*.*\"run\":\"run-2\"(.*\n)*2 proofs checked: 0 "))
      << said;
  for (const std::string run : {"run-3", "run-2", "0ecba827"}) {
    EXPECT_EQ(Shell("velora-ts export " + run + " > here; velora-ts export --config facility " + run + " > there"), 0);
    EXPECT_EQ(Shell("cmp here there"), run == "run-2" ? 1 : 0) << said;
  }
  EXPECT_EQ(Shell("velora-ts export run-2 > here; velora-ts export --config facility run-2 > there; "
                  "head -n $(wc -l < here) there | cmp here - && tail -n 2 there"),
            0);
  EXPECT_EQ(said, "{\"record\":\"added\",\"format\":1,\"run\":\"run-2\",\"store\":\"" +
                      Query(folder / "facility/ts.db", "SELECT guid FROM stores WHERE store_id = 1").substr(0, 36) +
                      "\"}\n{\"record\":\"note\",\"number\":1,\"root\":\"run-2\",\"author\":\"Cleo\",\"kind\":"
                      "\"review\",\"text\":\"seen\",\"at\":\"2026-11-28\"}\n");

  // What the instrument has not sealed yet waits for it. What is new here is sealed here.
  ASSERT_EQ(SqlThere("INSERT INTO events VALUES (20000000010, 20000000002, 20000000007, NULL, 'new', '');"
                     "INSERT INTO notes VALUES (2, 20000000007, 'Cleo', 'tag', 'new', '')"),
            0);
  EXPECT_EQ(Tool("seal --config facility"), 0);
  EXPECT_TRUE(Matches(said, "sealed: what was added to run run-3[^\n]*\"note\":1\\}\nnewest seal: 3 [^\n]*\n")) << said;
  EXPECT_EQ(Tool("verify --config facility --anchor anchor"), 4);
  EXPECT_TRUE(
      HasMatch(said,
               "\nnot sealed: the store of Veldmar[^\n]* \\([-0-9a-f]{36}\\): run run-3 [^\n]*; it is sealed in "
               "that store, where it was recorded\n9 seals verified: 0 findings, 1 not sealed\n"))
      << said;
  folder.Write("other", "seal 1 " + std::string(64, 'a') + "\n");
  EXPECT_EQ(Tool("verify --config facility --anchor anchor --anchor other"), 1);
  EXPECT_TRUE(Says("finding: no store here has seal 1 with the hash in 'other'")) << said;

  // Hashes arrive behind their seals.
  const struct {
    const char* without;
    int result;
    const char* says;
  } rows[] = {
      {"seal = 6", 4,
       "not compared: [^\n]*: the hashes of seal 6 and behind it in tree_leaves, which have not arrived\n"},
      {"seal > 4", 4,
       "not compared: [^\n]*: the hashes of seal 5 and behind it in tree_leaves, which have not arrived\n"},
      {"seal = 5", 1, "finding: [^\n]*seal 5"},
  };
  for (const auto& [without, result, says] : rows) {
    SCOPED_TRACE(without);
    RestoreThere();
    ASSERT_EQ(SqlThere(std::string("DELETE FROM tree_leaves WHERE leaf_id > 10000000000 AND ") + without), 0);
    EXPECT_EQ(Tool("verify --config facility"), result);
    EXPECT_TRUE(HasMatch(said, says)) << said;
  }
}

TEST_F(SealsAtTheFacility, EveryAlterationOfWhatAnotherStoreRecordedIsFound) {
  const std::string everyColumnThere = ReplaceMatches(everyColumn, "((rowid|event_id) >?= )([124])", "$012000000000$3");
  // Every table: a row becomes one of this store, and one of a store that nobody knows.
  const auto moved = [](const std::string& to) {
    return "SELECT t.name, 'UPDATE ' || t.name || ' SET ' || k || ' = ' || k || ' " + to +
           "' || ' WHERE ' || k || ' = (SELECT MIN(' || k || ') FROM ' || t.name || ' WHERE ' || k || ' >= ' || "
           "iif(t.name = 'tree_parts', 20000000001, 20000000002) || ')' FROM (SELECT name, CASE name WHEN 'parameters' "
           "THEN 'event_id' "
           "ELSE "
           "'rowid' END AS k FROM sqlite_master WHERE type = 'table' AND name NOT IN ('running', 'session_locks', "
           "'arrivals')) t";
  };
  const std::filesystem::path sealed = folder / "sealed-there.db";
  std::vector<Alteration> all = Made(sealed, everyColumnThere, "finding: ");
  EXPECT_GT(all.size(), 60U);
  for (const auto& more :
       {Made(sealed, moved("- 19999999000"), "finding: "), Made(sealed, moved("+ 10000000000"), "finding: "),
        std::vector<Alteration>{
            {"events", "UPDATE events SET event_id = 20000000099 WHERE event_id = 1",
             "finding: what belongs to no run was altered"},
            {"events", "UPDATE events SET execution_id = 20000000004, session_id = 20000000002 WHERE event_id = 1",
             "to a row of another store"},
            {"notes", "UPDATE notes SET root_id = 20000000001 WHERE note_id = 1", "was altered: seal 2"},
            {"notes", "UPDATE notes SET note_id = 20000000099 WHERE note_id = 1", "was altered: seal 2"},
            {"events", "INSERT INTO events VALUES (20000000000, 20000000002, NULL, NULL, '', '')",
             "is not numbered from 1"},
            {"stores", "DELETE FROM stores WHERE store_id > 1", "is of a store that is not known here"},
            {"seals", "DELETE FROM seals WHERE seal_id = 20000000006",
             "finding: no store here has seal 6 with the hash in 'anchor'"}}}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  for (const auto& [table, statements, found] : all) {
    SCOPED_TRACE(statements);
    RestoreThere();
    ASSERT_EQ(SqlThere(statements), 0) << said;
    EXPECT_EQ(Tool("verify --config facility --anchor anchor"), 1) << table << said;
    EXPECT_TRUE(HasMatch(said, found)) << said;
  }
  std::printf("%zu alterations found\n", all.size());
}

}  // namespace
