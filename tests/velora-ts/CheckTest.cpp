// velora-ts check, with a host beside it: what it says is what the host meets.

#include "ToolTest.h"

#include <map>
#include <set>

namespace {

using namespace std::string_literals;

class Check : public WithTool<InFolder> {
 protected:
  /// Every file of the host's folder with its content.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& file : std::filesystem::recursive_directory_iterator(folder / "host")) {
      if (file.is_regular_file()) {
        files[file.path()] = ContentOf(file.path());
      }
    }
    return files;
  }
  std::string Executions() {
    static_cast<void>(Shell("cd host && sqlite3 -readonly ts.db 'SELECT COUNT(*) FROM executions' 2>/dev/null"));
    return said;
  }
};

struct Case {
  const char* prepared;  // what is done to the folder that init made, in it
  bool records;
  const char* words;
  const char* start = "";    // environment of the host and of check
  const char* options = "";  // of check
  bool onLinuxAlone = false;
};

const std::vector<Case> cases = {
    {":", true, "ts.db' does not exist yet; the first host that records makes it"},
    {"sqlite3 ts.db '.read " SOURCE "/tests/local-ts/version-1.sql'", true, "upgrades the store from version 1"},
    {"sqlite3 ts.db '.read " SOURCE "/tests/local-ts/version-1.sql' \"INSERT INTO ts_schema VALUES (-4, '')\" 'CREATE "
     "TABLE notes (note_id); CREATE TABLE stores (store_id); CREATE TABLE signatures (signature_id); CREATE TABLE "
     "timestamps (timestamp_id)'",
     true, "not compared: the schema and the rights on it: a newer program made version 4"},
    {"touch ts.db", true, "empty; the first host makes the store"},
    {"rm *", false, "/host' lacks TSAL.config and activities.xml"},
    {"rm activities.xml", false, "/host' lacks activities.xml"},
    {"rm TSAL.config", false, "/host' lacks TSAL.config"},
    {"rm instrument.xml", false, "instrument.xml' cannot be read"},
    {"rm instrument.xml; mkfifo instrument.xml", false, "is a FIFO", "", "", true},
    {"echo '<Activities>' > activities.xml", false, "activities.xml', line 2: "},
    {"echo '<Activities/>' > activities.xml", true, "warning: activities.xml defines no activity version"},
    {"sed -i s/sqlite3/mysql/ TSAL.config", false, "TSAL.config', line 7: unknown Backend 'mysql'; expected"},
    {"sed -i s,ts.db,no/ts.db, TSAL.config", false, "there is no folder '"},
    {"mkdir ts.db", false, "ts.db' is a folder; expected a regular file"},
    {"echo 'no database at all, but text' > ts.db", false, "file is not a database; expected an SQLite file"},
    {"sqlite3 ts.db 'CREATE TABLE microscopes (name)'", false, "is not a TS store: it has tables of another program"},
    {"sqlite3 ts.db 'CREATE TABLE ts_schema (version)' 'INSERT INTO ts_schema VALUES (99)'", false,
     "has a schema of version 99; expected version 3 at most"},
    {"sed -i 's,\"sqlite3\" Connection=\"ts.db\",\"postgresql\" Connection=\"host=127.0.0.1 port=1\",' TSAL.config",
     false, "; expected a running server that accepts this user"},
    {"mkdir ../client; touch ../client/libpq.so.5; sed -i s/sqlite3/postgresql/ TSAL.config", false,
     "PostgreSQL's client library cannot be used: ../client/libpq.so.5: file too short; expected",
     "LD_LIBRARY_PATH=../client", "", true},
    {"mkdir ../client; touch ../client/libpq.so.5; sed -i '/Database/a <Forward Connection=\"no address\"/>' "
     "TSAL.config",
     true, "ts.db' does not exist yet", "LD_LIBRARY_PATH=../client", "", true},
    {":", false, "TSAL_SERVICE is 'absent'", "TSAL_SERVICE=absent"},
    {"mkdir ../client; touch ../client/" TSAL, false, "' cannot be loaded: ../client/" TSAL ": file too short",
     "LD_LIBRARY_PATH=../client", "", true},
    {"mkdir ../library && mv TSAL.config activities.xml instrument.xml ../library", true,
     "/library/ts.db' does not exist yet", "LD_LIBRARY_PATH=../library:" LIBRARIES, "--library ../library/" LIBRARY,
     true},
};

TEST_F(Check, SaysWhatAHostThatStartsThereMeets) {
  for (const Case& row : cases) {
    if (row.onLinuxAlone && underWine) {
      continue;
    }
    SCOPED_TRACE(row.prepared + " "s + row.start);
    ASSERT_EQ(Shell("rm -rf host library client; velora-ts init host; cd host; "s + row.prepared), 0) << said;
    ASSERT_EQ(Shell("[ ! -d library ] || cp '" LIBRARIES "/" LIBRARY "' library"), 0) << said;
    const std::string before = Executions();
    const auto files = Files();
    EXPECT_EQ(Shell("cd host && "s + row.start + " velora-ts check " + row.options), row.records ? 0 : 1) << said;
    EXPECT_NE(said.find(row.words), std::string::npos) << said;
    EXPECT_EQ(Files(), files) << "it leaves nothing";
    const int ended = Shell("cd host && VELORA_LOG_FILE=../log "s + row.start + " '" FIVE_CALLS "'");
    static_cast<void>(Shell("cp library/ts.db host 2>/dev/null; cp library/ts.db-wal host 2>/dev/null"));
    EXPECT_EQ(ended == 0 && Executions() != before, row.records) << "the host: " << said;
  }
}

using Mistakes = ToolTest;

TEST_F(Mistakes, AreNamedWhereNoOperationRefusesThem) {
  BringUp();
  EXPECT_EQ(Tool("check"), 0);
  EXPECT_EQ(said.find("warning: "), said.rfind("warning: ")) << "the activities file: " << said;
  ASSERT_EQ(Shell("sqlite3 ts.db \"INSERT INTO executions VALUES (4, 'g4', NULL, 4, 1, NULL, 'stray', '', 0, "
                  "'2026-11-26'), (5, 'g5', 4, 4, 1, NULL, 'without an event', '', 0, '2026');"
                  "INSERT INTO statuses VALUES (7, 4, 1, 4, '2026-11-26T01'), (8, 4, 1, 14, '2026-11-26T02');"
                  "INSERT INTO events VALUES (4, 1, 4, 1, '', '2026-11-26T01'), (5, 1, 4, 1, 'late', '2026-11-26T03'),"
                  "(6, 1, 4, 1, 'LATE', '2026-11-26T01');"
                  "INSERT INTO parameters VALUES (4, 1, 'Dose', 'int', NULL, 1), (5, 1, 'dose', 'int', NULL, 1)\""),
            0)
      << said;
  EXPECT_EQ(Tool("check"), 0) << said;
  for (const char* const words :
       {"warning: 1 of the newest 1000 events have no name: ",
        "warning: 1 of the newest 1000 events belong to an execution that was already done, for example 'late'",
        "warning: 2 of the newest 1000 executions have no activity version: ", "execution of node 'stray'",
        "warning: 1 of the newest 1000 executions have no parent, although the host named one: ",
        "only in case: 'LATE' and 'late'", "only in case: 'Dose' and 'dose'"}) {
    EXPECT_TRUE(Says(words)) << words << '\n' << said;
  }
}

}  // namespace
