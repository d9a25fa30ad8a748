// The files of a store in a file: how they are found, and what a program that was killed leaves.

#include "ToolTest.h"

#include <random>

namespace {

using Files = ToolTest;

TEST_F(Files, AStoreIsReadWithItsLogHoweverItIsReached) {
  soci::session host(soci::sqlite3, "dbname=" + (folder / "ts.db").string());
  host << "INSERT INTO events VALUES (4, 1, 1, NULL, 'in the log', '')";
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
}

TEST_F(Files, WhatMustFirstBeRolledBackIsNotRead) {
  ASSERT_EQ(Shell("mkdir away; sqlite3 ts.db 'PRAGMA journal_mode = DELETE' 'PRAGMA cache_size = 1' BEGIN "
                  "\"UPDATE parameters SET name = printf('%9000s', 'half done')\" "
                  "'.shell cp ts.db ts.db-journal away' ROLLBACK; rm ts.db; ln -s away/ts.db"),
            0);
  for (const char* verb : {"check", "runs", "verify", "backup copy.db"}) {
    EXPECT_EQ(Tool(verb), 3) << verb;
    EXPECT_TRUE(Says("away/ts.db-journal'; expected one who may write the store to undo that")) << verb << said;
  }
  EXPECT_EQ(Shell("sqlite3 ts.db 'PRAGMA quick_check'"), 0);
  EXPECT_EQ(Tool("check"), 0) << said;
}

}  // namespace
