// The files of a store in a file: how they are found, and what a program that was killed leaves.

#include "ToolTest.h"
#include "support/TestStore.h"

#include <random>

namespace {

using Files = ToolTest;

TEST_F(Files, AStoreIsReadWithItsLogHoweverItIsReached) {
  SKIP_UNDER_WINE("Wine does not show symbolic links");
  const SqlConnection host = OpenFile(folder / "ts.db");
  host->RunScript("INSERT INTO events VALUES (4, 1, 1, NULL, 'in the log', '')");
  EXPECT_EQ(Shell("[ -s ts.db-wal ] && mkdir other && ln -s ts.db first && ln -s .. other/folder && ln ts.db second"),
            0);
  static const struct {
    const char* link;  // to what other/ts.db leads
    int code;
    const char* words;
  } rows[] = {
      {"../ts.db", 0, "checked: 3 executions, 4 events"},
      {"../first", 0, "checked: 3 executions, 4 events"},
      {"folder/first", 0, "checked: 3 executions, 4 events"},
      {"../second", 3, "has 2 names (hard links)"},
  };
  folder.Write("other/TSAL.config", ContentOf(folder / "TSAL.config"));
  for (const auto& [link, code, words] : rows) {
    SCOPED_TRACE(link);
    EXPECT_EQ(Shell(code == 0 ? "rm -f second" : "ln ts.db second"), 0);
    EXPECT_EQ(Shell("rm -f copy.db; ln -sf " + std::string(link) + " other/ts.db"), 0);
    EXPECT_EQ(Tool("backup copy.db --config other"), code);
    EXPECT_TRUE(Says(words)) << said;
    EXPECT_EQ(Tool("export last --config other"), code);
    EXPECT_EQ(Says("in the log"), code == 0) << said;
  }
  EXPECT_EQ(Shell("rm second; ln -sf ../ts.db other/ts.db; velora-ts seal --config other && velora-ts verify"), 0)
      << said;
}

TEST_F(Files, WhatMustFirstBeRolledBackIsNotRead) {
  SKIP_UNDER_WINE("Wine does not show symbolic links");
  ASSERT_EQ(Shell("mkdir away; sqlite3 ts.db 'PRAGMA journal_mode = DELETE' 'PRAGMA cache_size = 1' BEGIN "
                  "\"UPDATE parameters SET name = printf('%9000s', 'half done')\" "
                  "'.shell cp ts.db ts.db-journal away' ROLLBACK; rm ts.db; ln -s away/ts.db"),
            0);
  for (const char* verb : {"show last", "runs", "verify", "backup copy.db"}) {
    EXPECT_EQ(Tool(verb), 3) << verb;
    EXPECT_TRUE(Says("away/ts.db-journal'; expected a user who may write there to open it first")) << verb << said;
  }
  EXPECT_EQ(Shell("sqlite3 ts.db 'PRAGMA quick_check'"), 0);
  EXPECT_EQ(Tool("check"), 0) << said;
}

TEST_F(Files, AnyStoreIsReadInPlaceOfThatOfTheSettings) {
  const std::string moved =
      "mkdir old && velora-ts prepare && mv ts.db old/2025.db && chmod 0444 old/2025.db && chmod 0555 old";
  ASSERT_EQ(Shell(moved), 0) << said;
  folder.Write("TSAL.config",
               "<TSAL><Database Backend='sqlite3' Connection='ts.db'/><Unit Parameter='TiltAngle' Text='gon'/></TSAL>");
  const std::string refused = "can only be read; expected a file that may be written";
  const struct {
    std::string arguments;
    int code;
    std::string words;
  } rows[] = {
      {"runs", 3, "there is no TS store '"},
      {"runs --with old/2025.db", 0, "grid.mdoc"},
      {"parameters last --with old/2025.db", 0, "gon"},
      {"runs --with ../old/2025.db", 3,
       "there is no TS store '../old/2025.db'; expected its file, or a folder with its"},
      {"prepare --with new.db", 3, "there is no TS store 'new.db'"},
      {"verify --with old/2025.db", 4, "0 findings"},
      {"check --with old/2025.db", 0, "schema: version"},
      {"backup copy.db --with old/2025.db", 0, "checked: 3 executions"},
      {"diff last last --with old/2025.db", 3, "there is no TS store '"},
      {"seal --with old/2025.db", 3, refused},
      {"note last dry --with old/2025.db", 3, refused},
      {"prepare --with old/2025.db", 3, refused},
  };
  for (const auto& [arguments, code, words] : rows) {
    EXPECT_EQ(Tool(arguments), code) << arguments << said;
    EXPECT_TRUE(Says(words)) << arguments << said;
  }
  EXPECT_EQ(Shell("mv copy.db ts.db; ls old; velora-ts diff last last --with old/2025.db"), 0) << said;
  EXPECT_TRUE(Says("2025.db\n") && Says("Nothing differs")) << said;
  EXPECT_EQ(Tool("report last --with old -o page.html"), WITH_PAGE ? 3 : 2) << said;
  EXPECT_EQ(Shell("rm ts.db; velora-ts report last --with old/2025.db -o page.html"), WITH_PAGE ? 0 : 2) << said;
  EXPECT_EQ(Shell("chmod 0755 old; rm TSAL.config; velora-ts show last --with old/2025.db"), 0) << said;
}

TEST_F(Files, AKilledBackupLeavesNothingThatIsTakenForOne) {
  ASSERT_EQ(Query(folder / "ts.db",
                  "INSERT INTO events WITH n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 150000) "
                  "SELECT i, 1, 1, NULL, 'event', '2026-11-25T12:00:00.000000Z' FROM n"),
            "");
  const auto seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int killed = 0;
  for (int turn = 0; turn < 40; ++turn) {
    const std::string wait = std::to_string(0.001 * static_cast<double>(random() % 150));
    ASSERT_EQ(Shell("rm -f copy.db; velora-ts backup copy.db & sleep " + wait +
                    "; kill -9 $!; wait $! || "
                    "echo killed; [ ! -e copy.db ] || sqlite3 copy.db 'SELECT COUNT(*) FROM events'"),
              0);
    killed += Says("killed") ? 1 : 0;
    EXPECT_TRUE(!exists(folder / "copy.db") || Says("150000\n")) << wait << said;
  }
  EXPECT_GT(killed, 0);
  EXPECT_EQ(Shell("rm -f copy.db; velora-ts backup copy.db && find . -name 'copy.db*' -not -name '*.part'"), 0);
  EXPECT_TRUE(Says("checked: 3 executions, 150000 events\n./copy.db\n")) << said;
  EXPECT_EQ(underWine ? 0 : Shell("find copy.db -perm 0640 | grep copy"), 0);
}

TEST_F(Files, AnAnchorIsWrittenThroughNoLink) {
  folder.Write("precious", "data\n");
  EXPECT_EQ(Shell("ln -s precious anchor.new"), 0);
  EXPECT_EQ(Tool("seal --anchor anchor"), 0) << said;
  EXPECT_EQ(Tool("verify --anchor anchor"), 0) << said;
  EXPECT_EQ(ContentOf(folder / "precious"), "data\n");
}

}  // namespace
