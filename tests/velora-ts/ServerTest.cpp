// Stores on a server: read, sealed and copied as files are.

#include "ToolTest.h"
#include "postgresql/Server.h"
#include "support/HostileRun.h"
#include "support/Patterns.h"
#include "support/TestStore.h"

#include <thread>

namespace {

using namespace Quor::TolvaServices;
using namespace std::string_literals;

class OnServer : public WithTool<PostgreSql> {
 protected:
  OnServer() {
    for (const auto& [name, database] : {std::pair("file", "Backend='sqlite3' Connection='ts.db'"),
                                         {"server", "Backend='postgresql' Connection='dbname=postgres'"},
                                         {"back", "Backend='sqlite3' Connection='ts.db'"}}) {
      create_directory(folder / name);
      WriteHostFiles(folder, name + "/"s);
      folder.Write(name + "/TSAL.config"s, "<TSAL Instrument='Scope'><Database "s + database + "/></TSAL>");
    }
  }

  void Begin(const std::string& name) const {
    Types::TSInstance::SetTsalPath((folder / name).string());
    Types::TSInstance::BeginSession();
  }
  /// Makes a database "sealed" with two runs, in which a role "host" may record.
  void PrepareSealed() {
    Begin("server");
    RecordHostileRun("one");
    RecordHostileRun("two");
    Sql("CREATE ROLE host LOGIN PASSWORD 'secret'");
    EXPECT_EQ(Tool("prepare --hosts host --config server"), 0) << said;
    EXPECT_EQ(Tool("seal --config server"), 0) << said;
    EXPECT_EQ(Tool("verify --config server"), 0) << said;
    Sql("SELECT COUNT(pg_terminate_backend(pid, 5000)) FROM pg_stat_activity WHERE datname = 'postgres'",
        "dbname=template1");  // a template has no users
    Sql("CREATE DATABASE sealed TEMPLATE postgres", "dbname=template1");
  }
  /// Has the tool look at a copy of it to which something was done.
  void Alter(const std::string& statements) const {
    Sql("DROP DATABASE IF EXISTS altered", "dbname=template1");
    Sql("CREATE DATABASE altered TEMPLATE sealed", "dbname=template1");
    Sql(statements, "dbname=altered");
    LookAt("dbname=altered");
  }
  void LookAt(const std::string& connection) const {
    folder.Write("server/TSAL.config", "<TSAL><Database Backend='postgresql' Connection='" + connection + "'/></TSAL>");
  }
  /// This month, or one after it, as partitions have it in their names.
  static std::string Month(int ahead = 0) {
    return Sql(
        "SELECT to_char(now() AT TIME ZONE 'UTC' + make_interval(months => " + std::to_string(ahead) + "), 'YYYYMM')",
        "dbname=template1");
  }
  static constexpr const char* exportAll = "export --since 2000-01-01 --config ";

  const Server server{folder / "of the server", underWine ? FreePort() : ""};
};

TEST_F(OnServer, ACopyThereAndBackIsTheSameRecordAndGoesOn) {
  Begin("file");
  RecordHostileRun("first");
  EXPECT_EQ(Tool("seal --config file --anchor anchor"), 0) << said;
  RecordHostileRun("second");
  EXPECT_EQ(Shell("sqlite3 file/ts.db \"INSERT INTO statuses VALUES (NULL, 1, 1, 4, '2026-11-24')\""), 0);  // goes on
  EXPECT_EQ(Tool("note last \"it's dry \xff\" --kind cause --config file"), 0) << said;
  EXPECT_EQ(Tool(exportAll + "file"s), 0);
  const std::string recorded = said;
  EXPECT_NE(recorded.find("{\"record\":\"note\",\"number\":1,"), std::string::npos);
  EXPECT_EQ(Tool("copy file server"), 0) << said;
  EXPECT_EQ(Tool("copy server back"), 0) << said;
  for (const std::string name : {"server", "back"}) {
    EXPECT_EQ(Tool(exportAll + name), 0);
    EXPECT_TRUE(said == recorded) << said;
    EXPECT_EQ(Tool("verify --anchor anchor --config " + name), 4) << said;
    EXPECT_EQ(Tool("check --config " + name), name == "back" ? 1 : 0) << "a file with two stores: " << said;
    EXPECT_EQ(Tool("runs --unfinished --json --config " + name), 0) << said;
    EXPECT_TRUE(Says("\"status\":4")) << said;
  }
  // This process holds a lock beside the file, and a copy has none; why nothing is known of a host differs. So does its
  // age. The key of a row of store 2 begins with 2 and nine zeros.
  remove(folder / "file/ts.db-hosts");
  const auto withoutReason = [this] {
    return ReplaceMatches(said, R"("why":"[^"]*"| *\d+:\d\d:\d\d ago|\b20{9})", "");
  };
  for (const std::string words :
       {"runs", "runs --unfinished --json", "show last --tree --events", "tail last", "export last --format csv",
        "export --since 2000-01-01 --format trace", "events --json", "stats number --by run --json",
        "parameters --json", "events --since 2000-01-01 --csv --where 'number > 1 and bool = true'"}) {
    EXPECT_EQ(Tool(words + " --config file"), 0) << said;
    const std::string ofFile = withoutReason();
    EXPECT_EQ(Tool(words + " --config server"), 0) << said;
    EXPECT_TRUE(withoutReason() == ofFile) << words << said << ofFile;
  }
  std::string page;
  for (const std::string name : {"file", "server"}) {
    if (!WITH_PAGE) {
      break;
    }
    EXPECT_EQ(Shell("velora-ts report last -o page.html --config " + name +
                    " && sed -E 's/\"(made|asked)\":[0-9]*//g; s/\"why\":\"[^\"]*\"//; s/\\b20{9}//g' page.html"),
              0);
    said.erase(0, said.find('\n'));  // which says how many bytes it has
    EXPECT_TRUE(page.empty() || said == page);
    page = said;
  }
  Begin("server");
  RecordHostileRun("third");
  EXPECT_EQ(Shell("sqlite3 file/ts.db \"INSERT INTO statuses VALUES (NULL, 1, 1, 14, '2026-11-25')\" && "
                  "velora-ts seal --config file && velora-ts copy file server"),  // what came since
            0)
      << said;
  EXPECT_EQ(Tool("note last again --config server"), 0) << said;
  EXPECT_EQ(Tool("seal --config server"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor --config server"), 0) << said;
  EXPECT_EQ(Shell("rm back/ts.db* && velora-ts copy server back"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor --config back"), 0) << said;
  EXPECT_EQ(Tool("backup backup.db --config back"), 0);  // whose keys are those of a server
  EXPECT_TRUE(Says("checked: 3 executions, 6 events")) << said;
  EXPECT_EQ(Tool("backup copy.dump --config server"), 2);
  EXPECT_TRUE(Says("pg_dump")) << said;
  NEEDS_PAGE();  // above
}

TEST_F(OnServer, ACopyIsWholeOrNotThereAndHasWhatGuardsIt) {
  SKIP_UNDER_WINE("under Wine the connection of a killed program stays open, and its transaction never ends");
  Begin("file");
  RecordHostileRun("run");
  const auto recordMore = [this](int from, int to) {
    EXPECT_EQ(Shell("sqlite3 file/ts.db \"WITH RECURSIVE n(i) AS (SELECT " + std::to_string(from) +
                    " UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(to) +
                    ") INSERT INTO events SELECT i, 1, 1, NULL, 'e', '2026-11-24' FROM n; INSERT INTO parameters "
                    "SELECT event_id, 1, 'p', 'double', NULL, event_id / 3.0 FROM events WHERE event_id >= " +
                    std::to_string(from) + '"'),
              0)
        << said;
  };
  recordMore(10, 60000);
  EXPECT_EQ(Tool(exportAll + "file"s), 0);
  const std::string recorded = said;
  // What is first true in the middle of the transaction that fills the store.
  const std::pair<std::string, std::string> targets[] = {
      {"server", "psql -XAt postgres -c 'SELECT query FROM pg_stat_activity' | grep -q '^COPY parameters'"},
      {"back", "[ \"$(stat -c %s back/ts.db-wal)\" -gt 1000000 ]"}};
  for (const auto& [target, middle] : targets) {
    const std::string copy = "copy file " + target;
    EXPECT_EQ(Tool("prepare --config " + target), 0) << said;
    EXPECT_EQ(Shell("velora-ts " + copy + " & while kill -0 $! && ! " + middle +
                    "; do sleep 0.01; done 2>/dev/null; kill -KILL $!; wait"),
              0);
    EXPECT_EQ(Tool("verify --config " + target), 4) << said;
    EXPECT_EQ(Tool(exportAll + target), 0);
    EXPECT_TRUE(said.size() < 100 || said == recorded) << said.size();

    EXPECT_EQ(Tool(copy), 0) << said;
    EXPECT_TRUE(Says("compared: 1 executions, 59993 events, 60015 parameters")) << said;
    EXPECT_EQ(Tool("verify --config " + target), 4) << said;
  }
  recordMore(70000, 90000);
  Sql("CREATE ROLE host LOGIN PASSWORD 'secret'");
  EXPECT_EQ(Tool("prepare --hosts host --config server"), 0) << said;
  LookAt("dbname=postgres user=host");  // a role of hosts may go on, beside hosts
  Begin("server");
  std::thread beside([] {
    for (int run = 0; run < 20; ++run) {
      RecordHostileRun("beside");
    }
  });
  for (const std::string target : {"server", "back"}) {
    int interrupted = 0;
    const std::string copy = "copy file " + target;
    for (const char* const wait : {"0.1", "0.3", "0.5"}) {
      interrupted += Shell("timeout -s KILL "s + wait + " velora-ts " + copy) != 0 ? 1 : 0;
    }
    EXPECT_GT(interrupted, 0);
    EXPECT_EQ(Tool(copy), 0) << said;
    EXPECT_TRUE(Says("compared: 1 executions, 79994 events, 80016 parameters")) << said;
  }
  beside.join();
  LookAt("dbname=postgres");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM executions WHERE execution_id < 10000000000"), "20");
  for (const std::string target : {"server", "back"}) {
    EXPECT_EQ(Tool("verify --config " + target), 4) << said;
  }
}

TEST_F(OnServer, ARowThatRefersToNoneIsNotCopied) {
  Begin("file");
  RecordHostileRun("run");
  EXPECT_EQ(Shell("sqlite3 file/ts.db \"INSERT INTO parameters VALUES (99, 1, 'p', 'int', NULL, 1)\""), 0) << said;
  for (const auto& [target, words] : {std::pair("server", "violates foreign key constraint"),
                                      {"back", "of parameters refers to a row of events that does not exist"}}) {
    EXPECT_EQ(Tool("copy file "s + target), 3);
    EXPECT_TRUE(Says(words)) << said;
    EXPECT_EQ(Tool("verify --config "s + target), 4) << said;
    EXPECT_EQ(Tool("runs --json --config "s + target), 0);
    EXPECT_EQ(said, "[]\n");
  }
}

TEST_F(OnServer, WhatIsAlteredThereIsFound) {
  PrepareSealed();
  const std::pair<std::string, const char*> rows[] = {
      {"UPDATE sessions SET instrument = 'Other'", "was altered"},
      {"UPDATE events SET name = 'Other' WHERE execution_id = 1", "was altered"},
      {"UPDATE parameters SET value_number = 0.2 WHERE value_number = 0.1", "was altered"},
      {"UPDATE parameters SET position = 99 WHERE position = 3", "was altered"},
      {"UPDATE parameters SET value_number = '-0' WHERE value_number = 0", "was altered"},
      {"DELETE FROM statuses WHERE status_id = 1", "was altered"},
      {"DELETE FROM events WHERE execution_id = 2", "refers to a row of events that does not exist"},
      {"DELETE FROM configurations WHERE configuration_id = 1", "refers to a row of configurations"},
      {"DELETE FROM executions WHERE execution_id = 2", "is missing"},
      {"UPDATE executions SET root_id = 2 WHERE execution_id = 1", "has a root that is not that of its parent"},
      {"DELETE FROM seals WHERE seal_id = 2", "seal 2 is missing"},
      {"UPDATE seals SET counts = ''", "was altered"},
      {"INSERT INTO events VALUES (-9223372036854775808, 1, 1, NULL, '', '')", "of events is not numbered from 1"},
      {"INSERT INTO parameters SELECT MIN(event_id), 0, '', 'int', NULL, 1 FROM events", "is not numbered from 1"},
      {"TRUNCATE parameters_" + Month(), "was altered"}};
  for (const auto& [statements, words] : rows) {
    SCOPED_TRACE(statements);
    const bool truncates = statements.find("TRUNCATE") == 0;
    const std::string triggers = "ALTER TABLE parameters_" + Month();
    Alter((truncates ? triggers + " DISABLE TRIGGER ALL; " : ""s) + "SET session_replication_role = replica; " +
          statements + (truncates ? "; " + triggers + " ENABLE TRIGGER ALL" : ""));
    EXPECT_EQ(Tool("verify --config server"), 1);
    EXPECT_TRUE(Says(words)) << said;
  }
}

TEST_F(OnServer, SignaturesAndProofsAreAsInAFile) {
  Begin("server");
  RecordHostileRun("one");
  EXPECT_EQ(Shell("openssl genpkey -algorithm ed25519 -out ines.pem; velora-ts seal --config server --key ines.pem "
                  "--signer ines | sed -n 's/.* by //p' >signers"),
            0)
      << said;
  EXPECT_EQ(Tool("verify --config server --signers signers"), 0) << said;
  EXPECT_TRUE(Says("and all before it: signed by ines")) << said;
  const std::string event = Sql("SELECT event_id FROM events WHERE execution_id IS NOT NULL ORDER BY event_id LIMIT 1");
  EXPECT_EQ(Tool("prove last " + event.substr(0, event.find('\n')) + " --config server -o server.proof"), 0) << said;
  EXPECT_EQ(Tool("prove --check server.proof --signers signers"), 0) << said;
  EXPECT_TRUE(Says("2 proofs checked: 0 findings, 0 not signed")) << said;
}

// All in one database, since each is told by its name.
TEST_F(OnServer, ASchemaThatIsNotWhatItWasMadeIsFoundWhateverWasDoneToIt) {
  PrepareSealed();
  const std::string next = Month(1);
  const std::string last = Month(2);
  const std::pair<std::string, std::string> rows[] = {
      {"CREATE OR REPLACE VIEW readings AS SELECT x.root_id, x.parent_id, x.execution_id, x.node, e.event_id, e.name "
       "AS "
       "event, e.at, p.position, p.name AS parameter, p.kind, p.value_text, 2 * p.value_number AS value_number FROM "
       "parameters p JOIN events e USING (event_id) LEFT JOIN executions x USING (execution_id)",
       "view readings is not as in a new store"},
      {"DROP VIEW durations", "view durations is missing"},
      {"DROP INDEX executions_by_root", "index btree (root_id) on executions is missing"},
      {"CREATE UNIQUE INDEX ON executions (node)",
       "unique index btree (node) on executions does not belong to a TS store"},
      {"ALTER TABLE sessions DROP CONSTRAINT sessions_guid_key", "constraint UNIQUE (guid) on sessions is missing"},
      {"ALTER TABLE statuses DROP CONSTRAINT statuses_execution_id_fkey", "(execution_id) on statuses is missing"},
      {"ALTER TABLE statuses ADD CHECK (false) NOT VALID",
       "constraint CHECK (false) NOT VALID on statuses does not belong to"},
      {"ALTER TABLE configurations ENABLE ROW LEVEL SECURITY", "row-level security of configurations is not as"},
      {"CREATE POLICY mine ON configurations USING (false)",
       "policy mine on configurations does not belong to a TS store"},
      {"ALTER TABLE activities ALTER name DROP NOT NULL", "column name of activities is not as in a new store"},
      {"ALTER TABLE activities ADD mine text", "column mine of activities does not belong to a TS store"},
      {"ALTER TABLE registrations SET UNLOGGED", "table registrations is not as in a new store"},
      {"CREATE TABLE mine () INHERITS (statuses)",
       "table mine does not belong to a TS store, and its rows appear in statuses"},
      {"ALTER TABLE events ATTACH PARTITION events_forged DEFAULT",
       "table events_forged does not belong to a TS store, and its rows"},
      {"ALTER TABLE events_" + last + " ALTER event_id DROP DEFAULT", "column event_id of events_" + last + " is not"},
      {"ALTER TABLE parameters DETACH PARTITION parameters_" + next,
       "partition of parameters for " + next + " is miss"},
      {"ALTER SEQUENCE event_numbers NO CYCLE", "sequence event_numbers is not as in a new store"},
      {"ALTER TABLE activity_versions OWNER TO host", "owner of activity_versions is not as in a new store"},
      {"DROP TRIGGER events_no_change ON events", "trigger events_no_change on events is missing"},
      {"ALTER TABLE events_" + Month() + " DISABLE TRIGGER ALL",
       "trigger events_" + Month() + "_no_truncate on events_" + Month() + " is not as in a new store"},
      {"SELECT", "checking of foreign keys of events_" + Month() + " is missing"},
      {"DROP TRIGGER parameters_copied_no_truncate ON parameters_copied",
       "copied_no_truncate on parameters_copied is m"},
      {"CREATE OR REPLACE FUNCTION refuse_change() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'",
       "function refuse_change() is not as in a new store"},
      {"CREATE OR REPLACE FUNCTION make_partitions() RETURNS void LANGUAGE sql SECURITY DEFINER SET search_path = "
       "public, pg_temp SET lock_timeout = '1s' AS ''",
       "function make_partitions() is not as in a new store"},
      {"CREATE TRIGGER mine BEFORE INSERT ON events FOR EACH ROW EXECUTE FUNCTION other()",
       "trigger mine on events does not belong to a TS store and may change what is recorded"},
      {"CREATE TRIGGER mine BEFORE INSERT ON statuses FOR EACH ROW EXECUTE FUNCTION \"RI_FKey_mine\"()",
       "trigger mine on statuses does not belong to a TS store"},
      {"DROP TRIGGER seals_no_change ON seals; CREATE TRIGGER seals_no_change BEFORE UPDATE OR DELETE ON seals "
       "FOR EACH ROW WHEN (false) EXECUTE FUNCTION refuse_change('seals')",
       "trigger seals_no_change on seals is not as in a new store"},
      {"CREATE RULE mine AS ON INSERT TO statuses DO INSTEAD NOTHING",
       "rule mine on statuses does not belong to a TS store"},
      {"GRANT INSERT, UPDATE ON seals TO host", "UPDATE on seals is granted to host"},
      {"GRANT INSERT ON arrivals TO host", "INSERT on arrivals is granted to host"},
      {"GRANT EXECUTE ON FUNCTION note_arrival(bigint, bigint, text) TO PUBLIC",
       "EXECUTE on function note_arrival(big"},
      {"CREATE OR REPLACE FUNCTION stores_in_order() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'",
       "function stores_in_order() is not as in a new store"},
      {"GRANT DELETE ON events_copied TO PUBLIC", "DELETE on events_copied is granted to everybody"},
      {"GRANT UPDATE (name) ON events TO host", "UPDATE on column name of events is granted to host"},
      {"GRANT UPDATE ON SEQUENCE event_numbers TO host", "UPDATE on event_numbers is granted to host"},
      {"GRANT CREATE ON SCHEMA public TO host", "CREATE on schema public is granted to host"},
      {"GRANT EXECUTE ON FUNCTION make_partition(bigint) TO PUBLIC", "EXECUTE on function make_partition(bigint), whi"},
      {"CREATE FUNCTION wipe() RETURNS void LANGUAGE sql SECURITY DEFINER AS ''", "EXECUTE on function wipe(), which"},
      {"CREATE FUNCTION back() RETURNS trigger LANGUAGE plpgsql SECURITY DEFINER AS 'BEGIN RETURN NEW; END'; REVOKE "
       "EXECUTE ON FUNCTION back() FROM PUBLIC",
       "EXECUTE on function back(), which acts as velora"},
      {"CREATE TABLE remarks (x int); CREATE RULE hatch AS ON INSERT TO remarks DO ALSO INSERT INTO seals DEFAULT "
       "VALUES",
       "rule hatch on remarks acts as velora"},
      {"CREATE VIEW door AS SELECT * FROM seals; GRANT INSERT ON door TO host", "INSERT on door is granted to host"},
      {"ALTER DEFAULT PRIVILEGES GRANT UPDATE ON TABLES TO host",
       "UPDATE on tables that velora makes is granted to ho"},
      {"GRANT velora TO host", "role host may record, and act as the owner of the store"},
      {"GRANT pg_write_all_data TO other", "role other may write every table of the server"},
      {"ALTER ROLE host IN DATABASE altered SET session_replication_role = replica",
       "replica is set for host, so that"},
      {"GRANT SET ON PARAMETER session_replication_role TO host", "role host may keep triggers from acting"},
  };
  std::string all =
      "CREATE ROLE other; CREATE TABLE events_forged (LIKE events); CREATE FUNCTION other() RETURNS trigger LANGUAGE "
      "plpgsql AS 'BEGIN RETURN NEW; END'; CREATE FUNCTION \"RI_FKey_mine\"() RETURNS trigger LANGUAGE plpgsql AS "
      "'BEGIN RETURN NEW; END'";
  for (const auto& [statement, words] : rows) {
    all += "; " + statement;
  }
  Alter(all);
  EXPECT_EQ(Tool("verify --config server"), 1);
  for (const auto& [statement, words] : rows) {
    EXPECT_TRUE(Says(words)) << statement << '\n' << said;
  }
  EXPECT_EQ(said.find("events_no_change on events_"), std::string::npos) << "said of the table alone: " << said;
  EXPECT_EQ(Tool("prepare --hosts host --config server"), 1) << "it makes no partitions any more";
  EXPECT_TRUE(Says("for " + next + " is missing; another relation has its name")) << said;
  EXPECT_EQ(Tool("check --config server"), 1);
  for (const char* const repaired : {"INSERT on ", "DELETE on ", "CREATE on ", "EXECUTE on function m", "on column "}) {
    EXPECT_EQ(said.find(repaired), std::string::npos) << said;
  }
}

TEST_F(OnServer, APartitionThatIsMissingIsFoundBeforeItsMonthAndMade) {
  PrepareSealed();
  const std::string partition = "parameters_" + Month(1);
  const std::string gone = "ALTER TABLE parameters DETACH PARTITION " + partition + "; DROP TABLE " + partition;
  const std::string ahead = "INSERT INTO events VALUES (" + Month(2) + "0000000007, 1, NULL, NULL, 'ahead', '2026')";
  Alter(ahead + "; " + gone);
  EXPECT_EQ(Tool("check --config server"), 1);
  EXPECT_TRUE(Says("of parameters for " + Month(1) + " is missing; velora-ts prepare makes it"));
  EXPECT_EQ(Tool("prepare --config server"), 0) << said;
  EXPECT_EQ(Tool("verify --config server"), 4) << said;
  EXPECT_TRUE(Says(": 0 findings, 1 not sealed")) << said;
  Sql("CREATE DATABASE idle", "dbname=template1");
  LookAt("dbname=idle");
  EXPECT_EQ(Tool("prepare --config server"), 0) << said;
  Sql(gone, "dbname=idle");
  EXPECT_EQ(Tool("check --config server"), 0) << "no host could have made it: " << said;
}

TEST_F(OnServer, WhatReadersAddAndAnotherServerMakesOfItIsNoFinding) {
  PrepareSealed();
  Alter(
      "CREATE VIEW mine AS SELECT * FROM events; CREATE INDEX ON executions (node); CREATE TABLE remarks (id bigint "
      "REFERENCES executions, text text); CREATE FUNCTION mine() RETURNS int LANGUAGE sql AS 'SELECT 1'; ALTER TABLE "
      "events_" +
      Month() +
      " SET (fillfactor = 90); CREATE ROLE reader LOGIN PASSWORD 'secret'; GRANT SELECT ON ALL TABLES IN SCHEMA "
      "public TO reader; CREATE ROLE night LOGIN; GRANT SELECT ON ALL TABLES IN SCHEMA public TO PUBLIC; GRANT ALL ON "
      "remarks TO reader; ALTER DEFAULT PRIVILEGES GRANT SELECT ON TABLES TO reader; ALTER TABLE parameters DETACH "
      "PARTITION parameters_" +
      Month(2) + "; REINDEX TABLE executions");
  EXPECT_EQ(Tool("verify --config server"), 0) << said;
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM pg_namespace WHERE nspname LIKE '%expected%'", "dbname=altered"), "0");
  LookAt("dbname=altered user=reader");
  EXPECT_EQ(Tool("verify --config server"), 4) << "it may lack what an altered view hides: " << said;
  EXPECT_TRUE(Says("not compared: tables, views, functions and triggers")) << said;
  EXPECT_TRUE(Says("permission denied for database altered")) << said;
  EXPECT_EQ(Tool("check --config server"), 1) << "a host of that role records nothing: " << said;
  EXPECT_TRUE(Says("does not let this role do that")) << said;
  EXPECT_EQ(Tool("note last dry --config server"), 3) << said;
  Sql("GRANT INSERT ON notes TO reader; GRANT USAGE ON SEQUENCE notes_note_id_seq TO reader; GRANT EXECUTE ON FUNCTION "
      "make_partitions() TO reader",
      "dbname=altered");
  for (const std::string role : {"reader", "host"}) {
    LookAt("dbname=altered user=" + role);
    EXPECT_EQ(Tool("note last dry --config server"), 0) << said;
  }
  LookAt("dbname=altered");
  EXPECT_EQ(Tool("verify --config server"), 4) << said;
  EXPECT_TRUE(Says("verified: 0 findings, 1 not sealed")) << said;
  EXPECT_EQ(Shell("createdb restored && pg_dump sealed | psql -q -v ON_ERROR_STOP=1 -d restored"), 0) << said;
  LookAt("dbname=restored");
  EXPECT_EQ(Tool("verify --config server"), 0) << said;
}

// A number is taken before its row can be seen: the seal waits for the row with the lower one.
TEST_F(OnServer, NothingIsSealedPastARowThatIsUnderWay) {
  Begin("server");
  RecordHostileRun("run");
  const SqlConnection slow = OpenServer("dbname=postgres");
  slow->RunScript("BEGIN");
  slow->RunScript("INSERT INTO events (session_id, execution_id, name, at) VALUES (1, 1, 'under way', '2026')");
  Sql("INSERT INTO events (session_id, execution_id, name, at) VALUES (1, 1, 'later', '2026')");
  std::thread host([&slow] {
    std::this_thread::sleep_for(std::chrono::seconds(1));
    slow->RunScript("COMMIT");
  });
  EXPECT_EQ(Tool("seal --config server"), 0) << said;
  host.join();
  EXPECT_EQ(Tool("verify --config server"), 0) << said;
  EXPECT_NE(Sql("SELECT counts FROM seals WHERE run IS NOT NULL").find("\"event\":3"), std::string::npos);
}

}  // namespace
