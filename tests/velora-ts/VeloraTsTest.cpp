// What velora-ts answers, and that it leaves a store and its hosts alone.

#include "ToolTest.h"
#include "support/Patterns.h"
#include "support/TestStore.h"

#include <map>
#include <set>
#include <sstream>

namespace {

using std::string_literals::operator""s;
using VeloraTs = ToolTest;

TEST_F(VeloraTs, AnswersWithACodeAndWords) {
  for (const char* const name : {"broken", "empty", "other", "waiting"}) {
    create_directory(folder / name);
  }
  folder.Write("broken/TSAL.config", "<TSAL>\n<Server/></TSAL>");
  folder.Write("empty/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='none.db'/></TSAL>");
  folder.Write("other/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='other.db'/></TSAL>");
  folder.Write("waiting/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='fifo'/></TSAL>");
  ASSERT_EQ(Shell("sqlite3 other/other.db 'CREATE TABLE microscopes (name)' && mkfifo waiting/fifo"), 0);
  const std::string guid = Query(folder / "ts.db", "SELECT guid FROM executions LIMIT 1").substr(0, 36);
  ASSERT_EQ(
      Shell("sqlite3 ts.db \"INSERT INTO executions SELECT 4, 'ffffffff-0000-4000-8000-000000000000', NULL, 4, 1, "
            "2, 'grid.mdoc', '', 5, '2026-11-26' FROM sessions\""),
      0);
  const std::string noSuchFile = underWine ? "Path not found" : "No such file";
  const struct {
    std::string arguments;
    int code;
    std::string words;
  } rows[] = {
      {"check", 0, "the next host that records upgrades the store from version 1"},
      {"check", 0, "4 executions, 6 statuses, 3 events, 6 parameters"},
      {"runs --config broken", 3, "broken/TSAL.config', line 2: unknown element 'Server'"},
      {"runs --config nowhere", 3, noSuchFile},
      {"runs --config empty", 3, "there is no TS store"},
      {"runs --config other", 3, "is not a TS store; expected"},
      {"runs --config waiting", 3,
       underWine ? "there is no TS store" : "/waiting/fifo' is a FIFO; expected a regular file"},
      {"check", 0, "last: run ffffffff-0000-4000-8000-000000000000 \"grid.mdoc\" of 2026-11-26"},
      {"export last", 0, "\"number\":4,\"guid\":\"ffffffff"},
      {"export " + guid, 0, "\"guid\":\"" + guid},
      {"export " + guid.substr(0, 3), 0, "\"guid\":\"" + guid},
      {"export FF", 0, "\"guid\":\"ffffffff"},
      {"export grid.mdoc", 1,
       "several runs match 'grid.mdoc'; name one of them by its guid:\nrun " + guid + " \"grid.mdoc\" of 2026-11-25"},
      {"export '%'", 1, "no run matches '%'; expected"},
      {"export --since 2026-11-26", 0, "\"number\":4,\"guid\":\"ffffffff"},
      {"export --since 2026-11-26 --until 2026-11-26T00Z", 0, "{\"record\":\"rest\",\"format\":1}\n"},
      {"export --since 2026-11-26T24", 2, "expected a time that exists, as 2026-11-24, '2026-11-24 21:55', 21:55"},
      {"export --since -2h --until 2000-01", 0, "{\"record\":\"rest\",\"format\":1}\n"},
      {"export last --since 2026-11-26", 2, "excludes"},
      {"export --until 2026-11-26 last", 2, "--since"},
      {"export last --format xml", 2, "xml"},
      {"export last > /dev/full", 3, "No space left"},
      {"check > /dev/full", 3, "No space left"},
      {"backup copy.db", 0, "copied to 'copy.db' and checked: 4 executions, 3 events"},
      {"backup copy.db", 3, "File exists"},
      {"backup no/such/copy.db", 3, noSuchFile},
      {"", 2, "expected a verb\n\"velora-ts --help\""},
      {"look", 2, "there is no verb 'look'\n"},
      {"shwo last", 2, "there is no verb 'shwo'; did you mean 'show'?\n"},
      {"rusn --help", 2, "there is no verb 'rusn'; did you mean 'runs'?\n"},
      {"help ver", 2, "there is no verb 'ver'; did you mean 'verify'?\n"},
      {"--json runs", 2, "expected a verb before '--json'\n"},
      {"show last --evnts", 2, "there is no option '--evnts'; did you mean '--events'?\n\"velora-ts show --help\""},
      {"show last --nothing=1", 2, "there is no option '--nothing'\n"},
      {"show last more", 2, "there is no place for the argument 'more'\n"},
      {"runs --since", 2, "--since: expected a value\n"},
      {"runs --since today --since today", 2, "--since: given twice\n"},
      {"tail ''", 2, "RUN: expected a text that is not empty\n"},
      {"runs --instrument ''", 2, "--instrument: expected a text that is not empty\n"},
      {"show last --columns ''", 2, "--columns: expected a text that is not empty\n"},
      {"seal --anchor no/such/anchor", 3, "file 'no/such/anchor' cannot be written: " + noSuchFile},
      {"verify --anchor TSAL.config", 3, "is not an anchor"},
      {"verify", 0, "0 findings, 0 not sealed"},
      {"note last ' ' --config broken", 2, "expected a TEXT that says something"},
      {"note last dry --author ''", 2, "--author: expected a text that is not empty"},
      {"note last dry --kind remark", 2, "--kind: expected cause or review or tag, not 'remark'"},
      {"note nothing dry", 1, "no run matches 'nothing'"},
      {"note last dry --config empty", 3, "there is no TS store"},
      {"note ffffffff 'cryo ran dry' --kind cause", 0, "noted, as a cause: run ffffffff-0000"},
      {"verify", 4, "not sealed: run ffffffff-0000"},
      {"backup --help", 0, "velora-ts backup /backup"},
      {"--version", 0, "velora-ts 0."},
  };
  for (const auto& [arguments, code, words] : rows) {
    EXPECT_EQ(Tool(arguments), code) << arguments << ": " << said;
    EXPECT_TRUE(Says(words)) << arguments << ": " << said;
  }
}

TEST_F(VeloraTs, HelpIsTheSameInBothFormsAndFitsATerminal) {
  EXPECT_EQ(Tool("help"), 0);
  const std::string all = said;
  EXPECT_EQ(Tool("--help"), 0);
  EXPECT_EQ(said, all);
  for (const auto& verb : MatchesIn(all, "\n  ([a-z]+)  ")) {
    const std::string& name = verb[1];
    EXPECT_EQ(Tool("help " + name), 0);
    const std::string help = said;
    EXPECT_TRUE(Says("Usage: velora-ts " + name) && Says("Example:\n  velora-ts " + name)) << help;
    EXPECT_FALSE(HasMatch('\n' + help, "\n(?!  velora-ts )[^\n]{81,}")) << help;
    EXPECT_EQ(Tool(name + " --help"), 0);
    EXPECT_EQ(said, help);
  }
}

TEST_F(VeloraTs, BuiltWithoutPagesSaysSoAndDoesTheRest) {
  for (const std::string arguments : {"report last", "report nothing --config none", "stats TiltAngle --plot page"}) {
    EXPECT_EQ(Shell("'" VELORA_TS_WITHOUT_PAGE "' " + arguments), 2) << arguments;
    EXPECT_TRUE(Matches(said, "[^\n]*built without pages[^\n]*VELORA_PAGE=ON[^\n]*\n")) << said;
  }
  for (const std::string arguments : {"help report", "stats TiltAngle"}) {
    EXPECT_EQ(Tool(arguments), 0);
    const std::string expected = said;
    EXPECT_EQ(Shell("'" VELORA_TS_WITHOUT_PAGE "' " + arguments), 0);
    EXPECT_EQ(said, expected);
  }
}

TEST_F(VeloraTs, NothingThatItSaysSteersATerminal) {
  static const std::string steering = "\x1b[2J\u009B\u061C\u202E\u2066\u200B\U000E0041\xFF";
  const auto store = [this](const std::string& name, const std::string& statements) {
    create_directory(folder / name);
    WriteHostFiles(folder, name + "/");
    folder.Write(name + "/TSAL.config", "<TSAL><Database Backend='sqlite3' Connection='../" + name + ".db'/></TSAL>");
    folder.Write("statements", statements);
    EXPECT_EQ(Shell("cp ts.db " + name + ".db && sqlite3 " + name + ".db < statements"), 0) << said;
  };
  BringUp();
  store("foreign", "CREATE TRIGGER \"" + steering + "\" BEFORE INSERT ON events BEGIN SELECT 1; END;");
  store("malformed", "PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES ('table', '" + steering +
                         "', 'x', 3, 'CREATE TABLE x');");
  create_directory(folder / "setting");
  WriteHostFiles(folder, "setting/");
  folder.Write("setting/TSAL.config", "<TSAL><Database Backend='\u009B\u202E' Connection='x'/></TSAL>");
  const auto expectHarmless = [&](const std::string& arguments) {
    Tool(arguments);
    EXPECT_TRUE(Says("\uFFFD\uFFFD")) << arguments << ": " << said;
    for (const std::string raw : {"\x1b", "\u009B", "\u061C", "\u202E", "\u2066", "\u200B", "\U000E0041", "\xFF"}) {
      EXPECT_FALSE(Says(raw)) << arguments << ": " << said;
    }
  };
  for (const std::string& arguments :
       {"verify --config foreign"s, "check --config foreign"s, "check --config malformed"s, "check --config setting"s,
        "check --config '" + steering + "'", "backup '" + steering + ".db'", "show '" + steering + "'",
        "runs '" + steering + "'"}) {
    expectHarmless(arguments);
  }
  NEEDS_PAGE();
  expectHarmless("report last -o '" + steering + ".html'");
}

TEST_F(VeloraTs, ExportsTheSameFromEverySchemaAndAsDocumented) {
  const std::string expected = ContentOf(SOURCE "/tests/velora-ts/version-1.jsonl");
  EXPECT_EQ(Tool("export last"), 0);
  EXPECT_EQ(said, expected);
  BringUp();
  EXPECT_EQ(Query(folder / "ts.db", "SELECT MAX(ABS(version)) FROM ts_schema"), "3\n");
  EXPECT_EQ(Tool("export last"), 0);
  EXPECT_EQ(said, expected);
  EXPECT_EQ(Tool("note last dry --author Anna"), 0);
  EXPECT_EQ(Tool("export last"), 0);
  EXPECT_TRUE(said.starts_with(expected + "{\"record\":\"note\",\"number\":1,\"root\":\"0ecba827-")) << said;

  std::map<std::string, std::string> described, written;  // fields of each record, in their order
  const std::string page = ContentOf(SOURCE "/docs/record-format.md");
  const std::string row = R"(\n\| (?:`(\w+)`)? ?\| ((?:`\w+`(?:, )?)+) \|)";
  std::string record;
  for (const auto& line : MatchesIn(page, row)) {
    record = line[1].empty() ? record : line[1];
    for (const auto& field : MatchesIn(line[2], R"(`(\w+)`)")) {
      described[record] += field[1] + ' ';
    }
  }
  std::istringstream lines(said);
  const std::string field = R"re([{,]"(\w+)":(?=(?:"([^"\\]|\\.)*"|\d+|null|\[)))re";
  for (std::string line; std::getline(lines, line);) {
    const std::string own = line.substr(0, line.find("{\"position\"", 1));  // not a parameter's
    std::string fields;
    for (const auto& match : MatchesIn(own, field)) {
      fields += match[1] == "record" ? "" : match[1] + ' ';
    }
    written[line.substr(11, line.find('"', 11) - 11)] = fields;
  }
  for (const char* other : {"rest", "schema", "store", "added", "signature", "timestamp"}) {
    described.erase(other);  // no part of such a run
  }
  EXPECT_EQ(described, written);
}

TEST_F(VeloraTs, ReadingChangesNothingAndWaitsForNobody) {
  const auto files = [&] {
    std::map<std::string, std::string> content;
    for (const auto& file : std::filesystem::directory_iterator(folder.path)) {
      content[file.path().filename()] = ContentOf(file.path());
    }
    content.erase("said");
    return content;
  };
  const auto closed = files();
  EXPECT_EQ(closed.count("ts.db-wal"), 0U);
  for (const char* verb : {"runs", "export last", "verify; [ $? -eq 4 ]"}) {
    EXPECT_EQ(Tool(verb), 0) << said;
  }
  EXPECT_EQ(files(), closed);
  const SqlConnection host = OpenFile(folder / "ts.db");
  host->RunScript("BEGIN IMMEDIATE");
  host->RunScript("INSERT INTO events VALUES (4, 1, 1, NULL, 'not yet there', '')");
  auto open = files();
  for (const char* verb : {"runs", "export last", "verify; [ $? -eq 4 ]"}) {
    EXPECT_EQ(Tool("--version && timeout 20 velora-ts " + std::string(verb)), 0) << said;
    EXPECT_FALSE(Says("not yet there"));
  }
  auto after = files();
  open.erase("ts.db-shm"), after.erase("ts.db-shm");  // where readers and writers meet
  EXPECT_EQ(after, open);
  host->RunScript("COMMIT");
  EXPECT_EQ(Tool("export last"), 0);
  EXPECT_TRUE(Says("not yet there"));
}

TEST_F(VeloraTs, ABackupMadeWhileAHostRecordsIsAWayBack) {
  folder.Write("activities.xml",
               "<Activities><Activity Name='Tilt'><ActivityVersion Name='Expose' Version='1'/>"
               "<ActivityVersion Name='Focus' Version='1'/></Activity></Activities>");
  ASSERT_EQ(Shell(": > told; '" RECORDING_HOST "' . host 100 > told & host=$!\n"
                  "tells() { until [ $(wc -l < told) -ge $1 ]; do kill -0 $host || exit; sleep 0.01; done; }\n"
                  "tells 300; velora-ts backup copy.db; code=$?\n"
                  "tells $(($(wc -l < told) + 300)); kill $host; wait $host; exit $code"),
            0)
      << said;
  const std::string recorded = "SELECT COUNT(*), MAX(event_id) FROM events";
  const std::string kept = Query(folder / "copy.db", recorded);
  EXPECT_NE(kept, Query(folder / "ts.db", recorded)) << "nothing was recorded meanwhile";
  const std::string page = ContentOf(SOURCE "/docs/velora-ts.md");
  const std::size_t begin = page.find("```sh\nSTORE=") + 6;
  const std::string way = page.substr(begin, page.find("```", begin) - begin);
  EXPECT_EQ(Shell("STORE=ts.db BACKUP=copy.db\n" + way), 4) << said;  // not all is sealed
  EXPECT_EQ(Query(folder / "ts.db", recorded), kept);
  EXPECT_EQ(Query(folder / "ts.db", "PRAGMA integrity_check"), "ok\n");
}

}  // namespace
