// Stores on a server: read, sealed and copied as files are.

#include "ToolTest.h"
#include "postgresql/Server.h"

#include <bit>
#include <limits>
#include <thread>

namespace {

using namespace Quor::TolvaServices;
using namespace std::string_literals;

class OnServer : public PostgreSql {
 protected:
  OnServer() {
    for (const auto& [name, database] : {std::pair("file", "Backend='sqlite3' Connection='ts.db'"),
                                         {"server", "Backend='postgresql' Connection='dbname=postgres'"},
                                         {"back", "Backend='sqlite3' Connection='ts.db'"}}) {
      create_directory(folder / name);
      folder.Write(name + "/TSAL.config"s, "<TSAL Instrument='Scope'><Database "s + database + "/></TSAL>");
    }
  }

  int Shell(const std::string& command) { return RunIn(folder, command, said); }
  int Tool(const std::string& arguments) { return Shell("'" VELORA_TS "' " + arguments); }
  void Begin(const std::string& name) const {
    Types::TSInstance::SetTsalPath((folder / name).string());
    Types::TSInstance::BeginSession();
  }
  /// A finished run with everything that is hard to keep, and an event outside of it.
  static void Record(const std::string& node) {
    using namespace Types;
    const auto& session = SessionHandle::Empty;
    const std::string hostile = node + "\0\xff\"'\\\n,<script>"s;
    const Tsid configuration =
        Methods::SystemMethods::SaveInstrumentConfigWithResult(hostile, "", "", "", "", "", "", "", "").ConfigurationId;
    ActivityExecution run;
    run.Node = hostile;
    run.ActivityVersion.Id = Tsid("01234567-89ab-4def-8123-456789abcdef");
    run.ActivityVersion.Name = hostile;
    Methods::ActivityMethods::SaveActivityExecution(run, session);
    InstrumentEvent event{hostile, {}, {std::make_shared<InstrumentParameterString>(hostile, hostile)}, {}, {}};
    using Double = std::numeric_limits<double>;
    for (const double number : {0.1, 0.0, -0.0, 1e22, Double::infinity(), -Double::infinity(), Double::denorm_min(),
                                Double::max(), 5e15, std::bit_cast<double>(0x7ff8000000000001U)}) {
      event.Parameters.push_back(std::make_shared<InstrumentParameterDouble>("number", number));
    }
    event.Parameters.push_back(std::make_shared<InstrumentParameterBoolean>("bool", true));
    Methods::LoggingMethods::SaveEvent(event, configuration, &run.Id, false, session);
    Methods::LoggingMethods::SaveEvent(event, Tsid(), nullptr, false, session);
    run.Status = {Enums::ActivityExecStatus::Done, DateTimeOffset::Now()};
    Methods::ActivityMethods::SaveActivityExecution(run, session);
  }
  static constexpr const char* exportAll = "export --since 2000-01-01 --config ";

  const Server server{folder / "of the server"};
  std::string said;
};

TEST_F(OnServer, ACopyThereAndBackIsTheSameRecordAndGoesOn) {
  Begin("file");
  Record("first");
  EXPECT_EQ(Tool("seal --config file --anchor anchor"), 0) << said;
  Record("second");
  EXPECT_EQ(Tool(exportAll + "file"s), 0);
  const std::string recorded = said;
  EXPECT_EQ(Tool("copy file server"), 0) << said;
  EXPECT_EQ(Tool("copy server back"), 0) << said;
  for (const std::string name : {"server", "back"}) {
    EXPECT_EQ(Tool(exportAll + name), 0);
    EXPECT_TRUE(said == recorded) << said;
    EXPECT_EQ(Tool("verify --anchor anchor --config " + name), 4) << said;
    EXPECT_EQ(Tool("check --config " + name), 0) << said;
  }
  for (const std::string words : {"runs", "runs --unfinished --json", "show last --tree --events", "tail last",
                                  "export last --format csv", "export --since 2000-01-01 --format trace"}) {
    EXPECT_EQ(Tool(words + " --config file"), 0) << said;
    const std::string ofFile = said;
    EXPECT_EQ(Tool(words + " --config server"), 0) << said;
    EXPECT_TRUE(said == ofFile) << words << said << ofFile;
  }
  std::string page;
  for (const std::string name : {"file", "server"}) {
    EXPECT_EQ(
        Shell("'" VELORA_TS "' report last -o page.html --config " + name + " && sed 's/\"made\":[0-9]*//' page.html"),
        0);
    said.erase(0, said.find('\n'));  // which says how many bytes it has
    EXPECT_TRUE(page.empty() || said == page);
    page = said;
  }
  Begin("server");
  Record("third");
  EXPECT_EQ(Tool("seal --config server"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor --config server"), 0) << said;
  EXPECT_EQ(Tool("copy server back"), 0) << said;  // what came since
  EXPECT_EQ(Tool("verify --config back"), 0) << said;
  EXPECT_EQ(Tool("copy file back"), 3) << "another store's copy: " << said;
  EXPECT_NE(said.find("none of"), std::string::npos) << said;
  EXPECT_EQ(Tool("backup copy.dump --config server"), 2);
  EXPECT_NE(said.find("pg_dump"), std::string::npos) << said;
}

TEST_F(OnServer, ACopyThatWasInterruptedGoesOnWhereItEnded) {
  Begin("file");
  Record("run");
  EXPECT_EQ(
      Shell("sqlite3 file/ts.db \"WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 30000)"
            " INSERT INTO events SELECT i, 1, 1, NULL, 'e', '2026-11-24' FROM n; INSERT INTO parameters SELECT "
            "event_id, 1, 'p', 'double', NULL, event_id / 3.0 FROM events WHERE event_id >= 10\""),
      0)
      << said;
  for (const std::string target : {"server", "back"}) {
    int interrupted = 0;
    const std::string copy = "copy " + (target == "back" ? "server"s : "file"s) + " " + target;
    for (const char* const wait : {"0.1", "0.3", "0.5", "0.7"}) {
      interrupted += Shell("timeout -s KILL "s + wait + " '" VELORA_TS "' " + copy) != 0 ? 1 : 0;
    }
    EXPECT_GT(interrupted, 0);
    EXPECT_EQ(Tool(copy), 0) << said;
    EXPECT_NE(said.find("compared: 1 executions, 29993 events, 30015 parameters"), std::string::npos) << said;
  }
}

TEST_F(OnServer, WhatIsAlteredThereIsFound) {
  Begin("server");
  Record("one");
  Record("two");
  EXPECT_EQ(Tool("seal --config server"), 0) << said;
  EXPECT_EQ(Tool("verify --config server"), 0) << said;
  const std::string month = Sql("SELECT to_char(now() AT TIME ZONE 'UTC', 'YYYYMM')");
  const std::pair<std::string, const char*> rows[] = {
      {"UPDATE sessions SET instrument = 'Other'", "was altered"},
      {"UPDATE events SET name = 'Other' WHERE execution_id = 1", "was altered"},
      {"UPDATE parameters SET value_number = 0.2 WHERE value_number = 0.1", "was altered"},
      {"UPDATE parameters SET position = 99 WHERE position = 3", "was altered"},
      {"UPDATE parameters SET value_number = '-0' WHERE value_number = 0", "was altered"},
      {"DELETE FROM statuses WHERE status_id = 1", "was altered"},
      {"DELETE FROM events WHERE execution_id = 2", "refers to a row of events that is not there"},
      {"DELETE FROM configurations WHERE configuration_id = 1", "refers to a row of configurations"},
      {"DELETE FROM executions WHERE execution_id = 2", "is missing"},
      {"UPDATE executions SET root_id = 2 WHERE execution_id = 1", "has another root than its parent"},
      {"DELETE FROM seals WHERE seal_id = 2", "seal 2 is missing"},
      {"UPDATE seals SET counts = ''", "was altered"},
      {"TRUNCATE parameters_" + month, "was altered"},
      {"DROP TRIGGER events_no_change ON events", "the trigger that refuses to change rows of table events is missing"},
      {"ALTER TABLE events_" + month + " DISABLE TRIGGER USER", "is not what it should be"},
      {"DROP TRIGGER parameters_copied_no_truncate ON parameters_copied", "the trigger that refuses to empty table"},
      {"CREATE OR REPLACE FUNCTION refuse_change() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'",
       "is not what it should be"},
      {"CREATE FUNCTION mine() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NEW; END'; CREATE TRIGGER mine BEFORE "
       "INSERT ON events FOR EACH ROW EXECUTE FUNCTION mine()",
       "is none of TS's"},
      {"CREATE FUNCTION \"RI_FKey_mine\"() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'; CREATE "
       "TRIGGER "
       "mine BEFORE INSERT ON statuses FOR EACH ROW EXECUTE FUNCTION \"RI_FKey_mine\"()",
       "is none of TS's"},
      {"CREATE RULE mine AS ON INSERT TO statuses DO INSTEAD NOTHING", "rule mine on statuses is none of TS's"},
      {"DROP TRIGGER statuses_no_change ON statuses; CREATE TRIGGER statuses_no_change BEFORE UPDATE OR DELETE ON "
       "statuses FOR EACH ROW WHEN (false) EXECUTE FUNCTION refuse_change('statuses')",
       "is not what it should be"}};
  Sql("SELECT COUNT(pg_terminate_backend(pid, 5000)) FROM pg_stat_activity WHERE datname = 'postgres'",
      "dbname=template1");  // a template has no users
  Sql("CREATE DATABASE sealed TEMPLATE postgres", "dbname=template1");
  for (const auto& [statements, words] : rows) {
    SCOPED_TRACE(statements);
    Sql("DROP DATABASE IF EXISTS altered", "dbname=template1");
    Sql("CREATE DATABASE altered TEMPLATE sealed", "dbname=template1");
    const bool truncates = statements.find("TRUNCATE") == 0;
    Sql((truncates ? "ALTER TABLE parameters_" + month + " DISABLE TRIGGER ALL; " : ""s) +
            "SET session_replication_role = replica; " + statements +
            (truncates ? "; ALTER TABLE parameters_" + month + " ENABLE TRIGGER ALL" : ""),
        "dbname=altered");
    folder.Write("server/TSAL.config", "<TSAL><Database Backend='postgresql' Connection='dbname=altered'/></TSAL>");
    EXPECT_EQ(Tool("verify --config server"), 1);
    EXPECT_NE(said.find(words), std::string::npos) << said;
  }
}

// A number is taken before its row can be seen: the seal waits for the row with the lower one.
TEST_F(OnServer, NothingIsSealedPastARowThatIsUnderWay) {
  Begin("server");
  Record("run");
  soci::session slow(soci::postgresql, "dbname=postgres");
  slow << "BEGIN";
  slow << "INSERT INTO events (session_id, execution_id, name, at) VALUES (1, 1, 'under way', '2026')";
  Sql("INSERT INTO events (session_id, execution_id, name, at) VALUES (1, 1, 'later', '2026')");
  std::thread host([&slow] {
    std::this_thread::sleep_for(std::chrono::seconds(1));
    slow << "COMMIT";
  });
  EXPECT_EQ(Tool("seal --config server"), 0) << said;
  host.join();
  EXPECT_EQ(Tool("verify --config server"), 0) << said;
  EXPECT_NE(Sql("SELECT counts FROM seals WHERE run IS NOT NULL").find("\"event\":3"), std::string::npos);
}

}  // namespace
