// What runs, show, tail and the exports for other programs make of a store.

#include "ToolTest.h"
#include "support/Patterns.h"
#include "support/Process.h"

#include <algorithm>
#include <functional>
#include <sstream>

namespace {

// A run that did not finish below its end, with texts that a terminal, a spreadsheet or a parser might take for more.
constexpr const char* hostileRun = R"(
INSERT INTO executions VALUES (4, 'ffffffff-0000-4000-8000-000000000000', NULL, 4, 1, 2,
    char(27) || '[2J<b>' || char(155), '', 5, '2026-11-26T10:00:00.000000Z'),
  (5, 'ffffffff-1', 4, 4, 1, NULL, 'step', '', 0, '2026-11-26T10:00:01.000000Z'),
  (6, 'ffffffff-2', 4, 4, 1, NULL, 'a long name of a step', '', 0, '2026-11-26T10:00:01.500000Z'),
  (7, 'eeeeeeee-0000-4000-8000-000000000000', NULL, 7, 1, NULL, 'after the clock was set back, and without a status',
    '', 0, '2026-11-24T10:00:00.000000Z'), (8, 'eeeeeeee-1', 7, 8, 1, NULL, 'its own root', '', 0, '2026-11-24T10');
INSERT INTO statuses VALUES (7, 4, 1, 4, '2026-11-26T10:00:00.000000Z'), (8, 5, 1, 4, '2026-11-26T10:00:01.000000Z'),
  (9, 4, 1, 14, '2026-11-26T11:01:02.345678Z'), (10, 6, 1, 14, '2026-11-26T10:00:02.000000Z');
INSERT INTO events VALUES (4, 1, 5, NULL, '=cmd()', '2026-11-26T10:00:01.250000Z'),
  (5, 1, 6, NULL, 'e', '2026-11-26T10:00:03.000000Z'),
  (6, 1, NULL, NULL, 'of no run', '2026-11-26T10:00:04.000000Z'), (50, 1, NULL, NULL, 'old', '2025-01-01');
INSERT INTO parameters VALUES (50, 1, 'Note [a]', 'int', NULL, 1), (50, 2, 'FramesOnDisk', 'int', NULL, 1),
  (4, 1, 'T', 'text', '+3.10', NULL), (4, 2, 'T', 'text', '-1+1', NULL),
  (4, 3, 'at', 'text', 'a "q",' || char(10) || 'b', NULL), (4, 4, '@N', 'double', 'NaN:7ff8000000000000', NULL),
  (4, 5, 'B', 'bool', NULL, 1), (4, 6, 'Empty', 'text', '', NULL), (4, 7, 'Quote', 'text', '''x', NULL),
  (4, 8, 'Tab', 'text', char(9) || 'x', NULL),
  (5, 1, 'B', 'bool', NULL, 0), (5, 2, 'Inf', 'double', NULL, -9e999),
  (5, 3, 'Bad', 'text', CAST(x'c3ff' AS TEXT), NULL),
  (5, 4, '@N', 'double', '-0.0', NULL), (5, 5, 'T', 'double', '=1', NULL), (5, 6, 'I', 'int', NULL, 9007199254740993);
INSERT INTO notes VALUES (1, 4, 'An' || char(27) || 'na', 'cause', 'ran' || char(10) || 'dry', '2026-11-26T12:00:00'),
  (2, 4, 'Bo', 'review', '\x00', '2026-11-26T13:00:00.000000Z'), (3, 7, 'Bo', 'review', 'odd', '2026-11-26T13');
)";

class Look : public ToolTest {
 protected:
  Look() {
    BringUp();
    folder.Write("hostile.sql", hostileRun);
    EXPECT_EQ(Shell("sqlite3 -bail ts.db < hostile.sql"), 0) << said;
  }
  /// Runs the tool on a terminal that has this many columns.
  int OnTerminal(const std::string& arguments, int columns, const std::string& zone = "UTC") {
    return Shell("TZ=" + zone + " TERM=xterm script -qec \"stty cols " + std::to_string(columns) + "; velora-ts " +
                 arguments + "\" /dev/null");
  }
};

TEST_F(Look, ShowsWhatThereIs) {
  create_directory(folder / "units");
  folder.Write(
      "units/TSAL.config",
      "<TSAL><Unit Parameter='TiltAngle' Text='°'/><Database Backend='sqlite3' Connection='../ts.db'/></TSAL>");
  static const struct {
    std::string arguments;
    int code;
    std::string shown;  // a pattern
  } rows[] = {
      {"runs", 0,
       "run +started +until +duration +state[^\n]* +note\nffffffff  2026-11-26 15:30:00\\+05:30  2026-11-26 "
       "16:31:02\\+05:30 +\\d+:\\d\\d:\\d\\d ago  UNFINISHED  veldmar-pc +"
       "TiltSeries 1.0  ␛\\[2J<b>\uFFFD +ran␊dry \\(\\+1\\)\n0ecba827  2026-11-25 09:00:11\\+05:30  2026-11-25 "
       "09:00:11\\+05:30 +0:00:00  "
       "done  "
       "[^\n]*\n"
       "eeeeeeee  [^\n]* no status [^\n]* 1 note\n"},
      {"runs --node grid.mdoc", 0, "[^\n]*\n0ecba827[^\n]*\n"},
      {"runs --node grid.mdoc --unfinished", 0, "[^\n]*\n"},
      {"runs --unfinished --limit 5", 0, "[^\n]*\nffffffff[^\n]*\n"},
      {"runs --since '2026-11-25 09:00:12' --instrument veldmar-pc --activity TiltSeries", 0,
       "[^\n]*\nffffffff[^\n]*\n"},
      {"runs --activity 'Tilt series acquisition' --limit 1", 0, "[^\n]*\nffffffff[^\n]*\n"},
      {"runs --instrument other", 0, "run [^\n]*\n"},
      {"runs --since 2026-02-30", 2, "[^]*expected a time that exists[^]*"},
      {"show last --digits 18", 2, "--digits: expected a whole number from 1 to 17, or all, not '18'\n[^]*"},
      {"runs --limit 0", 2, "--limit: expected a whole number greater than 0, not '0'\n[^]*"},
      {"runs --json --limit 1", 0,
       "\\[\n\\{\"guid\":\"ffffffff-0000[^\n]*\"node\":\"\\\\u001b[^\n]*"
       "\"started_at\":\"2026-11-26T10:00:00.000000Z\"[^\n]*\"unfinished\":true,"
       "\"state\":\"unknown\",\"why\":\"its host has an "
       "earlier[^\n]*\",\"last_recorded_at\":\"2026-11-26T11:01:02.345678Z\","
       "\"notes\":\\[\\{\"number\":1,\"author\":\"An\\\\u001bna\",\"kind\":\"cause\",[^\n]*\\}\\]\\}\n\\]\n"},
      {"show --columns 'TiltAngle,Note [a],FramesOnDisk' 0ecba827 --config units", 0,
       "[^]* TiltAngle \\[°\\] +Note \\[a\\] +FramesOnDisk\n[^]*"},
      {"show --columns TiltAngle,Note 0ecba827", 0,
       "run +0ecba827-[^]*state +done\nduration +0:00:00.031\n\nexecution +activity +state[^\n]*TiltAngle +Note\n"
       "ZValue 0[^\n]* 0:00:00.008 +0.5\nZValue 1[^\n]* 0:00:00.008 +3.1  it's \uFFFD\n"},
      {"show 0ecba827 --tree", 0, "[^]*\ngrid.mdoc [^\n]* Voltage=300\n  ZValue 0 [^\n]* TiltAngle=0.5[^]*"},
      {"show ffffffff", 0,
       "UNFINISHED; last recorded 2026-11-26 16:31:02.345\\+05:30, \\d+:\\d\\d:\\d\\d ago; whether its host still runs "
       "is "
       "not known: its host has an earlier version[^\n]*\n[^]*state +done, but not [^]*"
       "\nnote +2026-11-26 17:30:00\\+05:30 An␛na, cause: ran␊dry\nnote +[^\n]* Bo, review: \uFFFD\n[^]*"
       "\nstep [^\n]*UNFINISHED[^\n]*T=\\+3.10  T=-1\\+1  at=a \"q\",␊b  …\n[^]*"},
      {"show ffffffff --events", 0,
       "[^]*\n2026-11-26 15:30:01.250\\+05:30  step  =cmd\\(\\)  T=[^\n]*@N=NaN[^\n]*\n"
       "2026[^\n]*B=false  Inf=-inf  Bad=\uFFFD\uFFFD  @N=-0.0  T==1[^\n]*\n"},
      {"show grid.mdoc", 0, "run +0ecba827[^]*"},
      {"show nothing", 1, "no run matches 'nothing'; [^\n]*\n"},
      {"show ''", 2, "RUN: expected a text that is not empty\n[^]*"},
      {"show last", 0, "run +eeeeeeee-[^]*state +no status\n[^]*"},
      {"tail 0ecba827", 0, "following run [^\n]*\n([^\n]*\n){3}"},
      {"tail last", 1, "following run eeeeeeee[^\n]*\nthis run has no status[^\n]*\n"},
      {"tail nothing", 1, "no run matches 'nothing'; [^\n]*\n"},
  };
  for (const auto& [arguments, code, shown] : rows) {
    EXPECT_EQ(Shell("TZ=IST-5:30 timeout 60 velora-ts " + arguments), code) << arguments << ": " << said;
    EXPECT_TRUE(Matches(said, shown)) << arguments << ":\n" << said;
  }
}

TEST_F(Look, OrdersStepsByTheTimesThatTheyState) {
  ASSERT_EQ(Shell("sqlite3 ts.db \"INSERT INTO executions SELECT 9, 'ffffffff-3', 4, 4, 1, NULL, 'untimed', '', 0, "
                  "started_at FROM executions WHERE execution_id = 4; INSERT INTO parameters VALUES "
                  "(4, 9, 'When', 'text', '01-Dec-26  00:00:00', NULL), (5, 9, 'When', 'text', '24-Nov-26', NULL), "
                  "(5, 10, 'When', 'text', '24-Nov-26  22:00:00', NULL)\""),
            0)
      << said;
  for (const char* more : {"", " --tree", " --json"}) {
    EXPECT_EQ(Tool("show ffffffff --order When" + std::string(more)), 0) << said;
    EXPECT_TRUE(Matches(said, "[^]*a long name of a step[^]*step[^]*untimed[^]*")) << said;
  }
  EXPECT_EQ(Tool("show ffffffff --order Tab"), 2);
  EXPECT_TRUE(Says("order 'Tab': expected a parameter of the run whose texts are times")) << said;
}

TEST_F(Look, SaysThatThereAreMoreRunsThanItLists) {
  for (const auto& [added, cut] : {std::pair("50 - COUNT(*)", false), std::pair("1", true)}) {
    EXPECT_EQ(Shell("sqlite3 -bail ts.db \"INSERT INTO executions WITH n(i) AS (SELECT 100 + MAX(execution_id) FROM "
                    "executions UNION ALL SELECT i + 1 FROM n LIMIT (SELECT " +
                    std::string(added) +
                    " FROM executions WHERE parent_id IS NULL)) SELECT i, 'g' || i, NULL, i, 1, NULL, 'n', '', 0, "
                    "'2026-01-01' FROM n\""),
              0)
        << said;
    EXPECT_EQ(Shell("velora-ts runs 2>&1 >/dev/null"), 0);
    EXPECT_EQ(said, cut ? "only the newest 50 are listed; --limit changes that\n" : "");
    EXPECT_EQ(Shell("velora-ts runs --limit 50 2>&1 >/dev/null"), 0);
    EXPECT_EQ(said, "");
  }
}

TEST_F(Look, FitsTheTerminalAndNeverSteersIt) {
  SKIP_UNDER_WINE("Wine's console draws the screen itself");
  for (const char* arguments :
       {"runs", "show ffffffff --tree --events", "runs --json", "export ffffffff --format csv"}) {
    const bool table = std::string(arguments).find("--json") == std::string::npos && arguments[0] != 'e';
    for (const int columns : {200, 72, 7}) {
      SCOPED_TRACE(arguments + (" on " + std::to_string(columns)));
      EXPECT_EQ(OnTerminal(arguments, columns), 0) << said;
      EXPECT_TRUE(columns == 7 || Says("\x1b[1;31mUNFINISHED") == table) << said;
      const std::string plain = ReplaceMatches(said, "\x1b\\[(1;31|0)m", "");
      EXPECT_EQ(plain.find('\x1b'), std::string::npos) << plain;
      EXPECT_EQ(plain.find("\xC2\x9B"), std::string::npos) << plain;
      std::istringstream lines(table ? plain : "");
      for (std::string line; std::getline(lines, line);) {
        const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; };
        const std::string whole = "(ffffffff|0ecba827|eeeeeeee|.*(step|without a status|␛.*))\r";
        EXPECT_TRUE(std::count_if(line.begin(), line.end(), std::not_fn(continues)) <= columns + 1 ||  // and its '\r'
                    Matches(line, whole))
            << line;
      }
    }
  }
  EXPECT_EQ(Shell("NO_COLOR=1 script -qec \"velora-ts runs\" /dev/null"), 0);
  EXPECT_TRUE(Says("UNFINISHED") && !Says("\x1b")) << said;
}

TEST_F(Look, ATerminalGetsEachDateOnceAndNumbersThatAreShort) {
  SKIP_UNDER_WINE("Wine's console draws the screen itself");
  folder.Write("night.sql", R"(
    INSERT INTO executions VALUES (20, 'dddddddd-0', NULL, 20, 1, NULL, 'night', '', 5, '2026-10-24T20:30'),
      (21, 'dddddddd-1', 20, 20, 1, NULL, 'square 1', '', 0, '2026-10-24T21:30'),
      (22, 'dddddddd-2', 20, 20, 1, NULL, 'square 2', '', 0, '2026-10-25T00:30'),
      (23, 'dddddddd-3', 21, 20, 1, NULL, 'hole 1', '', 0, '2026-10-24T22:30'),
      (24, 'dddddddd-4', 22, 20, 1, NULL, 'hole 1, whose name is long', '', 0, '2026-10-25T01:30'),
      (25, 'cccccccc-0', NULL, 25, 1, NULL, 'morning', '', 5, '2026-10-25T08:30');
    INSERT INTO events VALUES (20, 1, 23, NULL, 'Image', '2026-10-24T22:30:00.250000Z'),
      (21, 1, 24, NULL, 'Image', '2026-10-25T01:30:00.250000Z'), (22, 1, 25, NULL, 'Image', '2026-10-27T01:30');
    INSERT INTO statuses VALUES (20, 25, 1, 4, '2026-10-25T08:30');
    INSERT INTO parameters VALUES (20, 1, 'X', 'double', NULL, -0.1234567891), (20, 2, 'S', 'text', '3.10000000', NULL),
      (21, 1, 'X', 'double', NULL, 1234567.25), (21, 2, 'S', 'int', NULL, 123456789);
  )");
  EXPECT_EQ(Shell("sqlite3 -bail ts.db < night.sql"), 0) << said;
  static const struct {
    std::string arguments, shown;
  } rows[] = {
      {"runs --since 2026-10-24 --limit 9",
       R"(run       started \(\+01:00\) +until  [^]*
ffffffff  2026-11-26 11:00:00        12:01:02  [^]*
    ran␊dry \(\+1\)
0ecba827  2026-11-25 04:30:11        04:30:11  [^]*
cccccccc  2026-10-25 09:30:00        02:30:00 \+2d  [^]*
dddddddd  2026-10-24 22:30:00\+02:00  [^]*
    night
)"},
      {"show dddddddd --columns X,S --tree --events",
       R"([^]*
execution   state      started   duration          X           S
2026-10-24 \+02:00
night       no status  22:30:00
  square 1  no status  23:30:00
2026-10-25 \+02:00
    hole 1  no status  00:30:00            -0.123457  3.10000000
  square 2  no status  02:30:00
2026-10-25 \+01:00
    hole 1, whose name is long
            no status  02:30:00              1234567   123456789

2026-10-25 \+02:00
00:30:00.250  square 1 > hole 1  Image  X=-0.123457  S=3.10000000
2026-10-25 \+01:00
02:30:00.250  square 2 > hole 1, whose name is long  Image  X=1234567…
)"},
      {"show dddddddd --columns X --tree --digits all", "[^]* -0.1234567891\n[^]* 1234567.25\n"},
      {"show dddddddd --digits 9 --events", "[^]*X=-0.123456789  S=3.10000000\n[^]*"},
  };
  for (const auto& [arguments, shown] : rows) {
    EXPECT_EQ(OnTerminal(arguments, 70, "CET-1CEST,M3.5.0/2,M10.5.0/3"), 0) << said;
    said = ReplaceMatches(said, "\r", "");
    EXPECT_TRUE(Matches(said, shown)) << arguments << ":\n" << said;
  }
}

TEST_F(Look, ExportsATableThatIsReadAsItWasMeant) {
  // The first execution goes on after the second one; columns stand in the order of saving.
  EXPECT_EQ(Shell("sqlite3 ts.db \"INSERT INTO events VALUES (7, 1, 5, NULL, 'late', '2026-11-26T10:00:05.000000Z'); "
                  "INSERT INTO parameters VALUES (7, 1, 'Late', 'int', NULL, 1), (7, 2, 'T', 'int', NULL, 2)\""),
            0);
  ASSERT_EQ(Tool("export --since 2026-11-26 --format csv > t.csv"), 0) << said;
  EXPECT_EQ(ContentOf(folder / "t.csv"),
            "\uFEFFnumber,at,run,execution,node,activity,event,T,T (2),at (2),'@N,B,Empty,Quote,Tab,Inf,Bad,I,Late\r\n"
            "4,2026-11-26T10:00:01.250000Z,ffffffff-0000-4000-8000-000000000000,ffffffff-1,step,,'=cmd(),+3.10,'-1+1,"
            "\"a \"\"q\"\",\nb\",NaN,true,\"\",''x,\"'\tx\",,,,\r\n"
            "5,2026-11-26T10:00:03.000000Z,ffffffff-0000-4000-8000-000000000000,ffffffff-2,a long name of a step,,e,"
            "'=1,,,-0.0,false,,,,-inf,\uFFFD\uFFFD,9007199254740992,\r\n"
            "7,2026-11-26T10:00:05.000000Z,ffffffff-0000-4000-8000-000000000000,ffffffff-1,step,,late,2,,,,,,,,,,,1\r\n"
            "6,2026-11-26T10:00:04.000000Z,,,,,of no run,,,,,,,,,,,,\r\n");
}

TEST_F(Look, ExportsATableByTheRulesOfThePage) {
  EXPECT_EQ(Shell("sqlite3 -bail ts.db '.read " SOURCE "/tests/csv-cases.sql'"), 0) << said;
  folder.Write("ask.sql", R"(
    SELECT group_concat(CASE WHEN event IS NULL THEN char(65279) || 'number,at,run,execution,node,activity,event'
      ELSE printf('%d,2026-11-26T10:00:00.000000Z,%s,%s,cases,,case', event, guid, guid) END ||
      ',' || cells || char(13), char(10)) FROM csv_lines JOIN executions WHERE execution_id = 70000;
  )");
  EXPECT_EQ(Shell("sqlite3 ts.db < ask.sql"), 0) << said;
  const std::string expected = said;
  EXPECT_EQ(Tool("export dddddddd --format csv"), 0) << said;
  EXPECT_EQ(said, expected);
}

TEST_F(Look, ExportsATimelineThatAgreesWithTheStore) {
  ASSERT_EQ(Tool("export ffffffff --format trace > t.json && velora-ts show ffffffff --json --tree --events > s.json"),
            0)
      << said;
  folder.Write("ask.sql", R"(
    SELECT json_array_length(readfile('s.json'), '$.executions'), json_array_length(readfile('s.json'), '$.events');
    CREATE TEMP TABLE t AS SELECT value AS v FROM json_each(readfile('t.json'), '$.traceEvents');
    SELECT b.v->>'id', b.v->>'name' LIKE '%(UNFINISHED)', b.v->>'ts', e.v->>'ts'
    FROM t b JOIN t e ON e.v->>'id' = b.v->>'id'
    WHERE b.v->>'ph' = 'b' AND e.v->>'ph' = 'e'
      AND e.v->>'cat' = b.v->>'cat' AND e.v->>'name' = b.v->>'name' ORDER BY 1;
    SELECT v->>'name', v->>'ts', v->'args'->>'T (2)', v->'args'->>'B' FROM t WHERE v->>'ph' = 'i' ORDER BY 2;
  )");
  EXPECT_EQ(Shell("sqlite3 :memory: < ask.sql"), 0) << said;
  EXPECT_EQ(
      said,
      "3|2\n4|0|0|3662345678\n5|1|1000000|3662345678\n6|0|1500000|2000000\n=cmd()|1250000|-1+1|1\ne|3000000||0\n");
}

TEST_F(Look, ATreeTakesRoomInProportionToItsDepth) {
  const auto bytesOf = [this](const std::string& levels) {
    const std::string key = levels + "0000";
    folder.Write("chain.sql", "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < " + levels +
                                  ") INSERT INTO executions SELECT " + key + " + i, 'chain-" + levels +
                                  "-' || i, CASE WHEN i > 0 THEN " + key + " + i - 1 END, " + key +
                                  ", 1, NULL, 'level ' || i, '', 5, '2026-11-27' FROM n");
    EXPECT_EQ(Shell("sqlite3 -bail ts.db < chain.sql"), 0) << said;
    EXPECT_EQ(Tool("show --tree chain-" + levels + "-0 | tee tree | tail -n 1"), 0) << said;
    EXPECT_EQ(said.find(std::string(40, ' ') + levels + ": level " + levels + "  "), 0U) << said;
    EXPECT_EQ(Shell("grep -c 'level .* no status' tree"), 0);
    EXPECT_EQ(said, std::to_string(std::stoi(levels) + 1) + '\n');
    return static_cast<double>(file_size(folder / "tree"));
  };
  const double of1500 = bytesOf("1500");
  EXPECT_LT(bytesOf("3000") / of1500, 2.1);
}

TEST_F(Look, WhatIsTooLongOrTooWideIsRefusedWithItsLimit) {
  const auto change = [this](const std::string& statement) {
    folder.Write("change.sql", statement);
    EXPECT_EQ(Shell("sqlite3 -bail ts.db < change.sql"), 0) << said;
  };
  change(
      "INSERT INTO events VALUES (8, 1, 1, NULL, 'wide', '2026-11-25T04'); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
      "SELECT i + 1 FROM n WHERE i < 16373) INSERT INTO parameters SELECT 8, i, 'P' || i, 'int', NULL, i FROM n");
  EXPECT_EQ(Tool("export 0ecba827 --format csv > csv && head -n 1 csv | tr -cd , | wc -c"), 0) << said;
  EXPECT_EQ(said, "16383\n");
  change("INSERT INTO parameters VALUES (8, 16374, 'One more', 'int', NULL, 1)");
  EXPECT_EQ(Tool("export 0ecba827 --format csv > csv"), 3);
  EXPECT_TRUE(Says("more names than a table may have columns, which is 16384")) << said;
  EXPECT_EQ(Tool("export 0ecba827 > jsonl"), 0) << said;

  change(
      "INSERT INTO events VALUES (9, 1, 5, NULL, 'long', '2026-11-26T10'); "
      "INSERT INTO parameters VALUES (9, 7, 'P', 'text', printf('%.*c', 67108865, 'x'), NULL)");
  const auto expectTooLong = [&](const std::string& verb) {
    EXPECT_EQ(Tool(verb + " ffffffff > long"), 3) << verb << ": " << said;
    EXPECT_TRUE(Says("'value_text' of the row with position 7, event_id 9 has 67108865 bytes; at most 67108864"))
        << verb << ": " << said;
  };
  expectTooLong("show --events");
  expectTooLong("show --events --json");
  expectTooLong("export --format csv");
  EXPECT_EQ(Tool("export ffffffff > long && grep -c x.*x long"), 0) << said;
#ifndef WITH_SANITIZERS  // which take memory of their own
  if (!underWine) {
    EXPECT_EQ(Shell("ulimit -v 200000; velora-ts export ffffffff > long"), 3);
    EXPECT_TRUE(Says("event_id 9 has 67108865 bytes, for which there is not enough memory")) << said;
  }
#endif
  NEEDS_PAGE();
  expectTooLong("report");
}

TEST_F(Look, FollowsARunFromItsFirstEventToItsEnd) {
  create_directory(folder / "new");
  folder.Write("new/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
  folder.Write("new/log", "2026-11-25T03:30:00Z [error] before the run\n2026-11-25T03:30:11.57Z [warning] slow\n");
  EXPECT_EQ(Shell(": > told; timeout 200 velora-ts tail --config new --log new/log > told 2>&1 & tail=$!\n"
                  "until grep -q waiting told; do sleep 0.05; done\n"
                  "sqlite3 new/made.db '.read " SOURCE "/tests/local-ts/version-1.sql' "
                  "'INSERT INTO statuses VALUES (7, 1, 1, 4, \"\")' &&\n"
                  "mv new/made.db new/ts.db\n"
                  "until grep -q TiltAngle=3.1 told; do sleep 0.05; done\n"
                  "sqlite3 new/ts.db \"INSERT INTO events VALUES (4, 1, 3, 1, 'late', '2026-11-25T03:31')\"\n"
                  "until grep -q late told; do sleep 0.05; done\n"
                  "mv new/log new/log.1 && echo '2026-11-25T03:31:05Z [error] [Stage] anew' > new/log\n"
                  "until grep -q anew told; do sleep 0.05; done\n"
                  "sqlite3 new/ts.db 'INSERT INTO statuses VALUES (8, 1, 1, 14, \"\")'\n"
                  "wait $tail && cat told"),
            0)
      << said;
  EXPECT_TRUE(Matches(said,
                      "waiting for a run\nfollowing run [^\n]*\n[^\n]*Series[^\n]*\n"
                      "[^\n]* log +warning +slow\n([^\n]*TiltAngle[^\n]*\n){2}whether its "
                      "host still runs is not known: [^\n]*\n[^\n]* late\n"
                      "[^\n]* log of Stage +error +anew\n"))
      << said;
}

TEST_F(Look, SaysWhetherARunStillRunsAndFollowsItNoFurtherThanItsHost) {
  SKIP_UNDER_WINE("the lock of a host on Linux says nothing to a program on Windows");
  using namespace Quor::TolvaServices;
  for (const char* const name : {"new", "copied", "backup"}) {
    create_directory(folder / name);
    folder.Write(std::string(name) + "/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>");
  }
  const Process host([this] {
    Types::TSInstance::SetTsalPath((folder / "new").string());
    Types::TSInstance::BeginSession();
    Types::ActivityExecution execution;
    execution.Status = {Types::Enums::ActivityExecStatus(4), Types::DateTimeOffset::FromMicroseconds(1)};
    Methods::ActivityMethods::SaveActivityExecution(execution, Types::SessionHandle::Empty);
  });
  EXPECT_EQ(Tool("runs --config new && velora-ts show last --config new"), 0);
  EXPECT_TRUE(HasMatch(said, " ago  running [^]*\nrunning; last recorded [^]*state +running")) << said;
  EXPECT_EQ(Tool("backup --config new backup/ts.db && velora-ts copy new copied"), 0) << said;
  host.Kill();
  EXPECT_EQ(Tool("tail last --config new"), 1);
  EXPECT_TRUE(Says("\nthis run has stopped: its host has ended; last recorded 19")) << said;
  EXPECT_EQ(Tool("runs --config new"), 0);
  EXPECT_TRUE(Says(" ago  STOPPED ")) << said;
  for (const std::string copy : {"copied", "backup"}) {
    EXPECT_EQ(Tool("runs --config " + copy), 0);
    EXPECT_TRUE(Says(" ago  UNFINISHED ")) << copy << said;
  }
  NEEDS_PAGE();
  EXPECT_EQ(Tool("report last --config new -o page"), 0) << said;
  EXPECT_NE(ContentOf(folder / "page").find("\"hosts\":{\"state\":\"stopped\""), std::string::npos);
}

}  // namespace
