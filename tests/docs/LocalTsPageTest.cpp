// Holds the pages against the tables as they are described, and docs/local-ts.md against a database that was really
// recorded.

#include "store/schema/Tables.h"
#include "support/Patterns.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TakenIn.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Velora::Store::Column;
using Velora::Store::Table;

class LocalTsPage : public testing::Test {
 protected:
  LocalTsPage() {
    const std::string good =
        "Voltage = 300\n[ZValue = 0]\nTiltAngle = 0.5\n[ZValue = 1]\nTiltAngle = 3.1\nDefocus = -4\n";
    folder.Write("good.mdoc", good);
    folder.Write("broken.mdoc", "[ZValue = 0]\nTiltAngle = 1.5\nNote = a text\nnot understood\n");
    const TestStore store(folder / "ts.db");
    store.Make();
    folder.Write("TSAL.config", "<TSAL><Database " + store.Attributes("ts.db") + "/></TSAL>");
    const std::string command =
        "cd '" + folder.path.string() + "' && '" RECORD_TILT_SERIES "' good.mdoc broken.mdoc > /dev/null 2>&1";
    EXPECT_NE(std::system(command.c_str()), 0) << "the broken file was not noticed";
  }

  std::string Ask(const std::string& statement) const { return Query(folder / "ts.db", statement); }

  ScratchFolder folder;
  const std::string page = ContentOf(DOCS "/local-ts.md");
};

/// The page's table of tables; columns of one meaning that follow one another share a row.
std::string TablesAsDescribed() {
  std::string rows = "| Table | Column | Meaning |\n|---|---|---|\n";
  for (const Table& table : Velora::Store::Tables()) {
    std::string names;
    for (auto column = table.columns.begin(); column != table.columns.end(); ++column) {
      if (column->name == Velora::Store::undeclaredKey) {
        continue;
      }
      names += (names.empty() ? "`" : ", `") + column->name + '`';
      if (column + 1 == table.columns.end() || (column + 1)->meaning != column->meaning) {
        const bool first = rows.find("| `" + table.name + "` |") == std::string::npos;
        rows += (first ? "| `" + table.name + "` | " : "| | ") + names + " | " + column->meaning + " |\n";
        names.clear();
      }
    }
  }
  return rows;
}

TEST(Pages, SayWhatEveryTableIsDescribedAs) {
  const std::string page = ContentOf(DOCS "/local-ts.md");
  const std::size_t start = page.find("| Table |");
  EXPECT_EQ(page.substr(start, page.find("\n\n", start) + 1 - start), TablesAsDescribed());
}

TEST(Pages, NameTheFieldsOfEveryRecordInTheirOrder) {
  const std::string page = ContentOf(DOCS "/record-format.md");
  const std::string row = R"(\n\| (`(\w+)`)? ?\| ((`\w+`(, )?)+) \| (`(\w+)`)?)";
  std::map<std::string, std::string> named;
  std::string record;
  for (const auto& line : MatchesIn(page, row)) {
    if (!line[2].empty()) {
      record = line[2];
      named[record] = line[7];
    }
    for (const auto& field : MatchesIn(line[3], R"(`(\w+)`)")) {
      named[record] += ' ' + field[1];
    }
  }
  std::map<std::string, std::string> described = {
      {"run", " format guid"}, {"added", " format run store"}, {"rest", " format"}};
  for (const Table& table : Velora::Store::Tables()) {
    described[table.record] = table.name;
    for (const Column& column : table.RecordColumns()) {
      described[table.record] += ' ' + column.Field();
    }
  }
  described["event"] += " parameters";
  described.erase("parameter");  // which stands in its event
  described.erase("seal");       // docs/integrity.md
  described.erase("leaves");     // as well
  described.erase("part");
  EXPECT_EQ(named, described);
}

TEST(FiveCalls, LeaveTheRowsThatThePageShows) {
  const ScratchFolder folder;
  const TestStore store(folder / "ts.db");
  store.Make();
  std::filesystem::copy(FIRST_SETTINGS, folder.path, std::filesystem::copy_options::recursive);
  folder.Write("TSAL.config", "<TSAL><Database " + store.Attributes("ts.db") + "/></TSAL>");
  const std::string command = "cd '" + folder.path.string() + "' && VELORA_LOG_FILE=log '" FIVE_CALLS "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  const std::string page = ContentOf(DOCS "/local-ts.md");
  int tables = 0;
  for (const auto& shown : MatchesIn(page, R"(\n\| (\w+) \| ([^\n]+) \|\n[|-]+((\n\| \|[^\n]+)+))")) {
    std::string rows = ReplaceMatches(shown[3], R"(\n\| \| (.*) \|)", "$1\n");
    rows = ReplaceMatches(ReplaceMatches(rows, R"( \| )", "\\|"), "…", "[^|]+");
    const std::string columns = ReplaceMatches(shown[2], R"( \| )", ", ");
    const std::string stored = Query(folder / "ts.db", "SELECT " + columns + " FROM " + shown[1] + " ORDER BY 1");
    EXPECT_TRUE(Matches(stored, rows)) << shown[1] << ": " << stored << "shown as\n" << rows;
    ++tables;
  }
  EXPECT_EQ(tables, 4);
}

/// What a question answers of two stores with the same rows, compared with one of them.
enum class OfTwo { TheSame, EachRowTwice, AllRowsTwice, Otherwise };

struct Question {
  int rows;
  const char* firstAnswer;  // a pattern
  OfTwo ofTwo = OfTwo::TheSame;
};

// What each question answers for the two files above, in the page's order.
const std::vector<Question> questions = {
    {2, R"(.*\|14\|TiltSeries\|good.mdoc\|.*)", OfTwo::EachRowTwice},
    {2, R"(.*\|TiltSeries\|broken.mdoc\|4\|.*)", OfTwo::EachRowTwice},
    {3, R"(0\|TiltSeries\|good.mdoc\|14\|.*)"},
    {2, R"(4\|20.*)"},
    {2, R"(ZValue 0\|20.*\|0.5\|NULL)"},
    {1, R"(20.*\|Brantor Scientific\|.*)"},
    {3, R"(ZValue\|20.*\|1\|TiltAngle\|double\|NULL\|3.1)"},
    {3, R"(good.mdoc\|0.*)"},
    {1, R"(ZValue 1\|20.*\|3.1)"},
    {2, R"(Section acquisition\|Section\|1.0\|3)", OfTwo::Otherwise},
    {4, R"(.*\|1.0\|.*activities.xml)", OfTwo::AllRowsTwice},
    {5, R"(.*\|20.*\|.*)", OfTwo::EachRowTwice},
    {1, R"(1\|now\|\|)", OfTwo::Otherwise},
    {2, R"(20.*\|broken.mdoc\|.*)", OfTwo::EachRowTwice},
    {1, R"([-0-9a-f]{36}\|20.*\|.*)", OfTwo::Otherwise},
    {1, R"(now\|Anna\|cause\|cryo ran dry)"},
    {2, R"(.*\|20.*\|ZValue 1\|ZValue\|3.1)", OfTwo::EachRowTwice},
    {1, R"([-0-9a-f]{36}\|.*\|2)", OfTwo::Otherwise},
};

std::vector<std::string> LinesOf(const std::string& answer) {
  std::istringstream text(answer);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::string Expected(OfTwo ofTwo, const std::string& ofOne) {
  if (ofTwo == OfTwo::TheSame) {
    return ofOne;
  }
  std::string twice;
  for (const std::string& line : LinesOf(ofOne)) {
    twice += line + '\n' + line + '\n';
  }
  return twice;
}

std::string Explained(Velora::Store::Connection& sql, const std::string& statement) {
  const bool server = TestStore::OnServer();
  if (server) {
    sql.RunScript("SET enable_seqscan = off");  // of a small table it would read all, whatever the indexes
  }
  return Query(sql, (server ? "EXPLAIN " : "EXPLAIN QUERY PLAN ") + statement);
}

// What the example leaves out: an event of no run, a note, a seal with all that is of it, and a session that registers
// nothing anew.
void Add(Velora::Store::Connection& sql, const std::string& run) {
  sql.RunScript("INSERT INTO events (session_id, name, at) VALUES (1, 'alone', '2026-11-24T21:55:03.123456Z')");
  sql.RunScript(
      "INSERT INTO notes (root_id, author, kind, text, at) VALUES (1, 'Anna', 'cause', 'cryo ran dry', 'now')");
  sql.RunScript("INSERT INTO seals VALUES (1, '" + run + "', 'now', '', '', '', '', 2, '', '')");
  sql.RunScript("INSERT INTO tree_leaves VALUES (1, 1, ''); INSERT INTO tree_parts VALUES (1, '')");
  sql.RunScript("INSERT INTO signatures VALUES (1, 1, 'note', '')");
  sql.RunScript("INSERT INTO timestamps VALUES (1, 1, '')");
  sql.RunScript("INSERT INTO sessions VALUES (2, 'second', 'Scope', '', '2026-11-25', '', '', '')");
  sql.RunScript("INSERT INTO stores VALUES (2, 'second', '2026-11-25', 'first', '')");
  sql.RunScript("INSERT INTO configurations VALUES (2, 'second', 2, '2027', '', '', '', '', '', '', '', '', '')");
}

constexpr const char* wholeTable = R"(SCAN (?!open|tree|running|o\b|r\b|t\b)|Seq Scan)";

TEST_F(LocalTsPage, QuestionsAreAnsweredWithoutReadingWholeTables) {
  const std::string run = Ask("SELECT guid FROM executions WHERE node = 'good.mdoc'").substr(0, 36);
  std::string instrument = Ask("SELECT instrument FROM sessions WHERE session_id = 1");
  instrument.pop_back();
  const std::map<std::string, std::string> values = {{":run", "'" + run + "'"},
                                                     {":day", "'2000-01-01'"},
                                                     {":next_day", "'2100-01-01'"},
                                                     {":parameter", "'TiltAngle'"},
                                                     {":node", "'ZValue 1'"},
                                                     {":name", "'good.mdoc'"},
                                                     {":instrument", "'" + instrument + "'"},
                                                     {":low", "0"},
                                                     {":high", "1"}};
  const SqlConnection sql = TestStore(folder / "ts.db").Open();
  Add(*sql, run);
  const auto asked = MatchesIn(page, R"(\n### (\d+\. [^\n]*)\n+```sql\n([^`]*);\n```)");
  ASSERT_EQ(asked.size(), questions.size());
  std::string plans;
  std::vector<std::string> statements, answers;
  for (std::size_t n = 0; n < asked.size(); ++n) {
    SCOPED_TRACE(asked[n][1]);
    std::string statement = asked[n][2];
    for (const auto& [name, value] : values) {
      statement = ReplaceMatches(statement, name + "\\b", value);
    }
    const std::string answer = Ask(statement);
    statements.push_back(statement);
    answers.push_back(answer);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM (" + statement + ") AS rows_of_it"), std::to_string(questions[n].rows) + "\n")
        << answer;
    EXPECT_TRUE(Matches(answer.substr(0, answer.find('\n')), questions[n].firstAnswer)) << answer;
    const std::string plan = Explained(*sql, statement);
    EXPECT_FALSE(HasMatch(plan, wholeTable)) << plan;
    plans += plan;
  }
  TakeInItself(*sql, 2);
  for (std::size_t n = 0; n < asked.size(); ++n) {
    SCOPED_TRACE(asked[n][1]);
    std::vector<std::string> answer = LinesOf(Ask(statements[n])),
                             expected = LinesOf(Expected(questions[n].ofTwo, answers[n]));
    if (questions[n].ofTwo == OfTwo::AllRowsTwice) {
      std::sort(answer.begin(), answer.end());
      std::sort(expected.begin(), expected.end());
    }
    if (questions[n].ofTwo != OfTwo::Otherwise) {
      EXPECT_EQ(answer, expected);
    }
    EXPECT_FALSE(HasMatch(Explained(*sql, statements[n]), wholeTable));
  }
  EXPECT_EQ(LinesOf(Ask(statements[9])).front(), "Section acquisition|Section|1.0|6");
  EXPECT_EQ(LinesOf(Ask(statements[12])).back(), "20000000001|now||");
  EXPECT_EQ(LinesOf(Ask(statements[14])).size(), 2U);
  EXPECT_TRUE(Matches(Ask(statements[17]), R"([-0-9a-f]{36}\|.*\|2\n2 of [-0-9a-f]{36}\|.*\|2\n)"))
      << Ask(statements[17]);
  // And no index is there that none of them needs.
  std::istringstream indexes(Ask(
      TestStore::OnServer()
          ? "SELECT COALESCE(MIN(inhrelid::regclass::text), c.relname) FROM pg_index i JOIN pg_class c ON c.oid = "
            "indexrelid LEFT JOIN pg_inherits h ON inhparent = c.oid WHERE relnamespace = 'public'::regnamespace AND "
            "NOT indisunique AND NOT relispartition GROUP BY c.relname"
          : "SELECT name FROM sqlite_master WHERE type = 'index' AND sql LIKE 'CREATE INDEX%'"));
  for (std::string index; std::getline(indexes, index);) {
    EXPECT_NE(plans.find(index), std::string::npos) << index;
  }
}

TEST_F(LocalTsPage, NoColumnIsLeftOutByEveryHost) {
  Add(*TestStore(folder / "ts.db").Open(), "");
  for (const Table& table : Velora::Store::Tables()) {
    for (const Column& column : table.columns) {
      EXPECT_NE(Ask("SELECT COUNT(" + column.name + ") FROM " + table.name), "0\n") << table.name << '.' << column.name;
    }
  }
}

TEST_F(LocalTsPage, DurationsAreTheSameOnBothDatabasesWhateverTheTimes) {
  struct Row {
    const char *from, *to, *seconds;
  };
  constexpr const char* noon = "2026-11-24T12:00:00.000000Z";
  const Row rows[] = {{noon, "2026-11-24T12:00:00.100002Z", "= 0.1"},
                      {noon, "2026-11-24T12:00:00.100500Z", "= 0.101"},
                      {noon, "2026-11-24T11:59:59.998500Z", "= -0.002"},
                      {noon, "2026-11-24T11:59:59.999000Z", "= -0.001"},
                      {"2026-11-24T12:00:00.999600Z", "2026-11-24T12:00:03.999600Z", "= 3"},
                      {noon, "2026-11-24T12:00:03.999600Z", "= 4"},
                      {"2024-02-28T23:59:59.000000Z", "2024-03-01T00:00:00.000001Z", "= 86401"},
                      {"2026-02-30T00:00:00.000000Z", "2026-03-03T00:00:00.000000Z", "= 86400"},
                      {"0000-01-01T00:00:00.000000Z", "9999-12-31T23:59:59.999999Z", "= 315569520000"},
                      {"9999-12-31T23:59:59.999000Z", "0000-01-01T00:00:00.000000Z", "= -315569519999.999"},
                      {noon, "2026-13-01T12:00:00.000000Z", "IS NULL"},
                      {"2026-00-10T12:00:00.000000Z", noon, "IS NULL"},
                      {noon, "2026-11-32T12:00:00.000000Z", "IS NULL"},
                      {noon, "2026-11-24T24:00:00.000000Z", "IS NULL"},
                      {noon, "2026-11-24T12:00:60.000000Z", "IS NULL"},
                      {noon, "2026-11-24T12:00:01Z", "IS NULL"},
                      {noon, "2026-11-24T12:00:01.000000Z\n", "IS NULL"},
                      {"-001-01-01T12:00:00.000000Z", noon, "IS NULL"},
                      {"", "never", "IS NULL"}};
  const SqlConnection sql = TestStore(folder / "ts.db").Open();
  long long key = 1000;
  for (const auto& [from, to, seconds] : rows) {
    const std::string id = std::to_string(++key);
    sql->RunScript("INSERT INTO executions VALUES (" + id + ", '" + id + "', NULL, " + id + ", 1, NULL, '', '', 5, '" +
                   from + "')");
    sql->RunScript("INSERT INTO statuses VALUES (" + id + ", " + id + ", 1, 14, '" + to + "')");
    const std::string durations = " FROM durations WHERE execution_id = " + id;
    EXPECT_EQ(Ask("SELECT 1" + durations + " AND seconds " + seconds), "1\n")
        << from << ' ' << to << ' ' << Ask("SELECT seconds" + durations);
  }
}

}  // namespace
