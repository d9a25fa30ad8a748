// A new file takes the place of the file of a store, whatever happens meanwhile.

#include "ToolTest.h"
#include "postgresql/Server.h"

#include <csignal>

namespace {

/// A host that records a run and ends.
const std::string host = "VELORA_LOG_FILE=log '" FIVE_CALLS "'";

/// What stops a program before a call that changes files (StopAt.cpp). It is loaded before the library of a sanitizer.
std::string Stopping(const std::string& at, int by) {
  return "ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 STOP_AT=" + at + " STOP_BY=" + std::to_string(by) +
         " LD_PRELOAD='" STOP_AT "' ";
}

/// A folder with a store of two runs.
class Rotate : public ToolTest {
 protected:
  Rotate() {
    BringUp();
    EXPECT_EQ(Shell(host), 0) << said;
  }
  /// The executions in all files, and in how many files each is.
  std::string Executions() {
    EXPECT_EQ(Shell("for file in *.db; do sqlite3 $file 'SELECT guid FROM executions'; done | sort | uniq -c"), 0);
    return said;
  }
};

TEST_F(Rotate, LeavesTheOldFileWholeAndBeginsANewOne) {
  const std::string all = Executions();
  ASSERT_EQ(Query(folder / "ts.db", "INSERT INTO statuses VALUES (100, 4, 2, 4, '2026-11-25T03:30:12.000000Z')"), "");
  EXPECT_EQ(Tool("rotate --anchor anchor"), 0) << said;
  EXPECT_TRUE(Says("not sealed: run ") && Says("has all records so far")) << said;
  EXPECT_EQ(Shell("ls -A; mv ts-*.db old.db; find . -name old.db -not -perm /222"), 0);
  EXPECT_TRUE(Says("\nts-") && Says("\nts.db\n") && Says("./old.db\n") && !Says("-wal") && !Says("-shm")) << said;
  EXPECT_EQ(Executions(), all);
  EXPECT_EQ(Shell("sqlite3 ts.db \"ATTACH 'old.db' AS old\" 'SELECT n.previous_guid = o.guid, n.guid <> o.guid, "
                  "n.previous_hash = (SELECT seal_hash FROM old.seals ORDER BY seal_id DESC LIMIT 1) FROM stores n, "
                  "old.stores o'"),
            0);
  EXPECT_EQ(said, "1|1|1\n");
  EXPECT_EQ(Tool("verify --with old.db"), 4) << said;  // a run did not finish
  EXPECT_EQ(Tool("runs --with old.db"), 0);
  EXPECT_TRUE(Says("STOPPED") && Says("done")) << said;
  EXPECT_EQ(Shell(host + "; velora-ts runs"), 0) << said;
  EXPECT_TRUE(Says("grid 7") && !Says("grid.mdoc")) << said;
}

TEST_F(Rotate, LeadsTheChainOnFromTheOldFile) {
  EXPECT_EQ(Tool("seal --anchor anchor"), 0) << said;
  EXPECT_EQ(Shell(host + "; velora-ts rotate --to old.db --anchor anchor"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor"), 0) << said;
  EXPECT_TRUE(Says("continues the store ") && Says("old.db' from its newest seal\n") && Says("0 not sealed")) << said;
  EXPECT_EQ(Shell("sqlite3 -separator ' ' old.db \"SELECT 'seal', MAX(seal_id), seal_hash FROM seals\" > end; "
                  "velora-ts verify --with old.db --anchor end"),
            0)
      << said;
  EXPECT_EQ(Tool("verify --anchor end"), 1);
  EXPECT_TRUE(Says("or the anchor is of the store before, ")) << said;
  EXPECT_EQ(Shell(host + "; velora-ts seal --anchor anchor && velora-ts verify --anchor anchor"), 0) << said;
  EXPECT_EQ(
      Shell("cp old.db other.db && chmod u+w other.db && rm -f old.db && velora-ts note last more --with other.db "
            "--author Anna && velora-ts seal --with other.db && velora-ts verify --anchor anchor"),
      1);
  EXPECT_TRUE(Says("finding: it continues the store ") && Says(" but the newest seal there is another one")) << said;
  EXPECT_EQ(Shell("rm other.db && velora-ts verify --anchor anchor"), 4) << said;
  EXPECT_TRUE(Says("not compared: the seal with the hash ") && Says(": that store is not here\n")) << said;
}

TEST_F(Rotate, LeadsAnAnchorOnAfterAnInterruptionIfTheOldFileHasIt) {
  const std::pair<const char*, int> rows[] = {
      {"", 0},
      {"UPDATE seals SET counts = counts || ' ' WHERE seal_id = 1", 1},
      {"UPDATE seals SET seal_hash = upper(seal_hash) WHERE seal_id = (SELECT MAX(seal_id) FROM seals)", 1},
      {"DELETE FROM seals WHERE seal_id = (SELECT MAX(seal_id) FROM seals)", 1},
  };
  EXPECT_EQ(Shell("velora-ts seal --anchor first; velora-ts rotate --to old.db; mkdir done; cp *.db done"), 0) << said;
  for (const auto& [statement, code] : rows) {
    EXPECT_EQ(Shell("rm *.db; cp done/* .; chmod u+w old.db; cp first anchor; sqlite3 old.db 'DROP TRIGGER "
                    "seals_no_update; DROP TRIGGER seals_no_delete' \"" +
                    std::string(statement) + "\""),
              0)
        << said;
    EXPECT_EQ(Tool("rotate --anchor anchor"), code) << statement << said;
    EXPECT_EQ(Shell("cmp -s first anchor"), code == 0 ? 1 : 0) << statement;
    EXPECT_EQ(Tool("verify --anchor anchor"), code) << statement << said;
  }
}

/// How calls of rotate end.
class RotateStopped : public Rotate, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(By, RotateStopped, testing::Values(SIGKILL, 0));  // 0: the call fails

TEST_P(RotateStopped, AtAnyCallLeavesAllRecords) {
  SKIP_UNDER_WINE("nothing can be preloaded into a Windows program");
  const int by = GetParam();
  EXPECT_EQ(Shell("mkdir first; sqlite3 ts.db \"INSERT INTO events VALUES (9, 1, 1, NULL, 'in the log', '')\" "
                  "'.shell cp ts.db ts.db-wal TSAL.config *.xml first'"),
            0);
  int call = 0;
  for (bool stopped = true; stopped && call < 500;) {
    EXPECT_EQ(Shell("rm -f *.db*; cp first/* ."), 0);
    const int code = Shell(Stopping(std::to_string(++call), by) + "velora-ts rotate --to old.db");
    SCOPED_TRACE(std::to_string(call) + (by == 0 ? " failed: " : " killed: ") + said);
    stopped = Says("stopped at");
    if (by == 0 && code != 0) {
      EXPECT_EQ(code, 3);
      EXPECT_TRUE(Says("ts.db") || Says("old.db"));
      EXPECT_EQ(Shell("test $(ls | grep -c '[.]part') = 0 && test $(stat -c %h ts.db) = 1"), 0);
    }
    EXPECT_EQ(Shell(host + " && velora-ts rotate --to next.db && velora-ts rotate --to last.db"), 0) << said;
    EXPECT_EQ(Shell("test $(stat -c %h ts.db) = 1 && find *.db -perm /222"), 0);
    EXPECT_EQ(said, "ts.db\n");
    Executions();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 5) << said;
    EXPECT_FALSE(Says(" 2 ")) << said;
    EXPECT_EQ(Shell("for file in *.db; do sqlite3 $file \"SELECT 'in the log' FROM events WHERE name = 'in the log'\"; "
                    "done"),
              0);
    EXPECT_EQ(said, "in the log\n");
  }
  EXPECT_GT(call, 20);
}

TEST_F(Rotate, AHostThatBeginsMeanwhileRecordsIntoTheNewFile) {
  SKIP_UNDER_WINE("nothing can be preloaded into a Windows program");
  const std::string opens =
      "until readlink /proc/$host/fd/* | grep -q '/ts.db$'; do [ -e /proc/$host/cwd ] || break; sleep 0.01; done";
  const std::string ends = "while [ -e /proc/$host/cwd ]; do sleep 0.01; done";
  const struct {
    std::string call, meanwhile;
    int code;
  } rows[] = {{"chmod", ends, 3}, {"link", opens, 0}, {"rename", opens, 0}};  // held from the second one on
  for (const auto& [call, meanwhile, code] : rows) {
    EXPECT_EQ(Shell(Stopping(call, SIGSTOP) +
                    "velora-ts rotate --to old.db & tool=$!; while ! grep -q '^State:.T' /proc/$tool/status; do kill "
                    "-0 $tool || exit; done; " +
                    host + " & host=$!; " + meanwhile + "; kill -CONT $tool; wait $host && wait $tool"),
              code)
        << call << said;
    EXPECT_EQ(
        Shell("ls; [ ! -e old.db ] || velora-ts verify --with old.db; sqlite3 ts.db 'SELECT node FROM executions'"), 0)
        << call << said;
    EXPECT_TRUE(said.ends_with("grid 7\n") && !Says("-wal")) << call << said;
    EXPECT_EQ(Says("grid.mdoc"), code != 0) << call << said;
    EXPECT_EQ(Shell("rm -f old.db"), 0);
  }
}

TEST_F(Rotate, RefusesWhileAnybodyUsesTheFile) {
  const struct {
    std::string before, arguments;
    int code;
    std::string words;
  } rows[] = {
      {"mkfifo in; sqlite3 ts.db < in & exec 3> in; printf 'BEGIN; SELECT 1 FROM events;\n.shell : > reads\n' >&3; "
       "until [ -e reads ]; do kill -0 $! || exit; sleep 0.01; done",
       "", 3, "is in use; expected that no host"},
      {"'" RECORDING_HOST "' . host 100 > told & until [ $(wc -l < told) -ge 20 ]; do sleep 0.01; done", "", 3,
       underWine ? "is in use" : "is in use by the host of '"},
      {": > there.db", "--to there.db", 3, "there is a file '"},
      {": > new.db-wal", "--to new.db", 3, "new.db-wal' already"},
      {":", "--to nowhere/new.db", 3, "nowhere/new.db' cannot be made"},
      {"echo \"<TSAL><Database Backend='postgresql' Connection='service=facility'/></TSAL>\" > TSAL.config", "", 2,
       "rotate is for a store in a file"},
  };
  folder.Write("activities.xml",
               "<Activities><Activity Name='Tilt'><ActivityVersion Name='Expose' Version='1'/>"
               "<ActivityVersion Name='Focus' Version='1'/></Activity></Activities>");
  for (const auto& [before, arguments, code, words] : rows) {
    EXPECT_EQ(Shell(before + "; velora-ts rotate " + arguments + "; code=$?; kill $! 2>&-; exit $code"), code) << said;
    EXPECT_TRUE(Says(words)) << before << said;
    EXPECT_EQ(Shell("ls | grep -E 'part|ts-'; stat -c %h ts.db"), 0);
    EXPECT_EQ(said, "1\n") << before;
  }
}

/// An instrument in the folder "scope", whose records a facility gets.
class RotateBesideFacility : public WithTool<PostgreSql> {
 protected:
  RotateBesideFacility() {
    const std::string database = "<Database Backend='postgresql' Connection='dbname=postgres'/>";
    create_directory(folder / "scope");
    create_directory(folder / "server");
    WriteHostFiles(folder, "scope/");
    folder.Write(
        "scope/TSAL.config",
        "<TSAL><Database Backend='sqlite3' Connection='ts.db'/><Forward Connection='dbname=postgres'/></TSAL>");
    folder.Write("server/TSAL.config", "<TSAL>" + database + "</TSAL>");
    EXPECT_EQ(Shell("velora-ts prepare --config server && cd scope && " + host), 0) << said;
  }

  const Server server{folder / "of the server", underWine ? FreePort() : ""};
};

TEST_F(RotateBesideFacility, SaysWhetherTheFacilityHasEverything) {
  const auto arrive = [](const std::string& executions) {
    return "until [ \"$(psql -d postgres -Atc 'SELECT COUNT(*) FROM executions')\" = " + executions +
           " ]; do kill -0 $forwarder || exit; sleep 0.1; done; ";
  };
  // The facility numbers the stores in the order in which they come: the old one first.
  EXPECT_EQ(Shell("cd scope; velora-ts forward --follow 2>/dev/null & forwarder=$!; " + arrive("1") + host +
                  "; velora-ts rotate --to old.db; code=$?; " + host + "; " + arrive("3") +
                  "kill $forwarder; wait $forwarder; exit $code"),
            0)
      << said;
  EXPECT_TRUE(Says("has all ") && Says(" rows of '") && Says("scope/old.db', compared value by value")) << said;
  EXPECT_EQ(Sql("SELECT COUNT(*) || ' ' || COUNT(DISTINCT execution_id / 10000000000) FROM executions"), "3 2");
  EXPECT_EQ(Tool("verify --config server"), 4);  // the new file is not sealed yet
  EXPECT_TRUE(Says("continues the store ") && Says(" from its newest seal") && Says(": 0 findings, ")) << said;
  EXPECT_EQ(Tool("rotate --check scope/old.db --config scope"), 0) << said;
  EXPECT_EQ(Shell("velora-ts forward --config scope --with scope/old.db && find scope/old.db-forward -perm -200 | grep "
                  "old"),
            0)
      << said;
  Sql("SET session_replication_role = replica; UPDATE statuses SET at = '' WHERE status_id = 20000000001");
  EXPECT_EQ(Tool("rotate --check scope/old.db --config scope"), 1);
  EXPECT_TRUE(Says("finding: what '") && Says("differs from the file; keep the file")) << said;
  server.Crash();
  EXPECT_EQ(Shell("cd scope; velora-ts rotate --to next.db"), 4);
  EXPECT_TRUE(Says("so it is not known whether the facility has everything") && Says("rotate --check '")) << said;
  EXPECT_EQ(Shell("find scope/next.db -not -perm /222 | grep next"), 0);
  EXPECT_EQ(Tool("check --config scope"), 0) << said;
  EXPECT_TRUE(Says(" rows wait for 'postgres") && !Says("has all that is recorded here")) << said;
}

}  // namespace
