// What the paths below /api say of runs, held against what the verbs say of the same stores.

#include "CommandLine.h"
#include "asking/ListedRuns.h"
#include "serving/Routes.h"
#include "serving/Served.h"
#include "store/reading/Listener.h"
#include "store/settings/Settings.h"
#include "support/Patterns.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace Velora;
using namespace Velora::Ts;
using Parameters = Http::Question::Parameters;

// Runs of two instruments, two of them started at the same time. 13 did not finish, and below 15 an execution did not.
constexpr const char* recorded = R"(
INSERT INTO sessions VALUES (11, '#s', 'Veldmar 3', 'pc', '2026-10', '', '', ''), (12, '#t', 'Scope 7', 'pc',
  '2026-10', '', '', '');
INSERT INTO activities VALUES (11, '#aa', 'Screening', '');
INSERT INTO activity_versions VALUES (11, '#av', 11, 'Grids', '2.0', ''), (12, '#aw', 11, 'Holes', '2.1', '');
INSERT INTO executions VALUES
  (11, '#aa00000-1', NULL, 11, 11, 11, 'grid 1', 'first 100% ÄÖ', 5, '2026-10-01T22:00:00.000000Z'),
  (12, '#bb00000-2', NULL, 12, 12, 12, 'grid_2', '', 5, '2026-10-02T22:00:00.000000Z'),
  (13, '#cc00000-3', NULL, 13, 11, NULL, 'grid 3', '', 5, '2026-10-02T22:00:00.000000Z'),
  (14, '#dd00000-4', NULL, 14, 12, 11, 'grid 3', '', 5, '2026-10-03T22:00:00.000000Z'),
  (15, '#ee00000-5', NULL, 15, 12, 12, 'Square', '', 5, '2026-10-04T22:00:00.000000Z'),
  (16, '#ff00000-6', 15, 15, 12, 12, 'below', '', 0, '2026-10-04T22:00:01.000000Z');
INSERT INTO statuses VALUES (11, 11, 11, 4, '2026-10-01T22'), (12, 12, 12, 4, '2026-10-02T22'),
  (13, 13, 11, 4, '2026-10-02T22'), (14, 14, 12, 4, '2026-10-03T22'), (15, 15, 12, 4, '2026-10-04T22'),
  (16, 16, 12, 4, '2026-10-04T22'), (17, 11, 11, 14, '2026-10-02T03'), (18, 12, 12, 14, '2026-10-03T01'),
  (19, 14, 12, 14, '2026-10-04T01'), (20, 15, 12, 14, '2026-10-05T01');
INSERT INTO events VALUES (11, 11, 11, NULL, 'Image', '2026-10-01T22:10:00.000000Z'),
  (12, 12, 14, NULL, 'Image', '2026-10-03T22:10:00.000000Z');
INSERT INTO parameters VALUES (11, 1, 'Dose', 'double', NULL, 50), (12, 1, 'Dose', 'double', NULL, 20);
INSERT INTO notes VALUES (11, 12, 'Ines', 'cause', 'ran DRY', '2026-10-05T08:00:00.000000Z');
)";

class Api : public testing::Test {
 protected:
  Api() {
    for (const char* const name : {"a", "b"}) {
      Add(name);
      Sql(name)->RunScript(ReplaceMatches(recorded, "#", name));
    }
  }

  /// Serves a further store.
  void Add(const std::string& name) {
    create_directory(folder / name);
    const TestStore store(folder / name / "ts.db");
    if (TestStore::OnServer()) {
      store.Make();
    }
    folder.Write(name + "/TSAL.config",
                 "<TSAL><Database " + store.Attributes("ts.db") + "/><Unit Parameter='Dose' Text='e/A2'/></TSAL>");
    EXPECT_EQ(Said({"prepare", "--config", At(name)}).first, Done);
    served.stores.push_back({static_cast<int>(served.stores.size()) + 1, At(name), Store::ReadSettings(At(name))});
  }
  std::string At(const std::string& name) const { return (folder / name).string(); }
  SqlConnection Sql(const std::string& name) const { return TestStore(folder / name / "ts.db").Open(); }

  /// The exit code of velora-ts, and what it writes to standard output.
  static std::pair<int, std::string> Said(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "velora-ts");
    testing::internal::CaptureStdout();
    const int code = RunCommandLine(arguments);
    return {code, testing::internal::GetCapturedStdout()};
  }
  /// The body of an answer, or the status and the words of a refusal.
  std::string Ask(const std::string& path, const Parameters& parameters) const {
    try {
      Http::Question question(parameters);
      const Http::Answer answer = HandlersOf(served).at(path).answer(question);
      std::string body = answer.body;
      if (answer.write) {
        answer.write([&](std::string_view piece) { body += piece; });
      }
      return body;
    } catch (const Http::Refusal& refusal) {
      return std::to_string(refusal.Status()) + ": " + refusal.what();
    }
  }
  static std::vector<std::string> All(const std::string& text, const char* pattern) {
    std::vector<std::string> found;
    for (const auto& match : MatchesIn(text, pattern)) {
      found.push_back(match[1]);
    }
    return found;
  }
  static std::vector<std::string> Guids(const std::string& json) { return All(json, "\\{\"guid\":\"([^\"]*)\""); }
  static std::string Next(const std::string& json) {
    const auto next = All(json, "\n\"next\":\"?([^\",]*)");
    return next.empty() ? json : next.front();
  }
  /// The runs of the first store, page after page: a search can end before the limit, at a time.
  std::vector<std::string> GuidsOfAllPages(Parameters asked) const {
    asked.emplace("store", "1");
    std::vector<std::string> found;
    for (std::string after; after != "null";) {
      asked.erase("after");
      asked.emplace("after", after);
      const std::string page = Ask("/api/runs", asked);
      const std::vector<std::string> guids = Guids(page);
      found.insert(found.end(), guids.begin(), guids.end());
      const std::string next = Next(page);
      if (next == page || next == after) {
        ADD_FAILURE() << page;
        return found;
      }
      after = next;
    }
    return found;
  }
  std::string Plan(const std::string& question) const {
    if (!TestStore::OnServer()) {
      return Query(folder / "a/ts.db", "EXPLAIN QUERY PLAN " + question);
    }
    const SqlConnection sql = Sql("a");
    sql->RunScript("SET enable_seqscan = off");  // of a small table it would read all, whatever the indexes
    return Query(*sql, "EXPLAIN " + ReplaceMatches(question, R"(\?(\d+))", "'$1'"));
  }

  const ScratchFolder folder;
  Served served;
};

TEST_F(Api, ListsTheRunsThatTheVerbLists) {
  const struct {
    Parameters asked;
    std::vector<std::string> options;
    const char* runs;
  } rows[] = {
      {{}, {}, "edcba"},
      {{{"instrument", "Scope 7"}}, {"--instrument", "Scope 7"}, "edb"},
      {{{"activity", "Holes"}}, {"--activity", "Holes"}, "eb"},
      {{{"activity", "Screening"}, {"state", "finished"}}, {"--activity", "Screening", "--state", "finished"}, "dba"},
      {{{"node", "grid 3"}}, {"--node", "grid 3"}, "dc"},
      {{{"state", "unfinished"}}, {"--unfinished"}, "ec"},
      {{{"state", "unknown"}}, {"--state", "unknown"}, "ec"},  // without a lock
      {{{"state", "unknown"}, {"node", "grid 3"}}, {"--state", "unknown", "--node", "grid 3"}, "c"},
      {{{"state", "running"}}, {"--state", "running"}, ""},
      {{{"state", "finished"}}, {"--state", "finished"}, "dba"},
      {{{"since", "2026-10-02 22:00Z"}, {"until", "2026-10-04Z"}},
       {"--since", "2026-10-02 22:00Z", "--until", "2026-10-04Z"},
       "dcb"},
      {{{"where", "Dose > 10"}, {"where", "Dose < 40"}}, {"--where", "Dose > 10", "--where", "Dose < 40"}, "d"},
      {{{"text", "GRID"}}, {"--text", "GRID"}, "dcba"},  // node, or activity
      {{{"text", "square"}}, {"--text", "square"}, "e"},
      {{{"text", "dry"}}, {"--text", "dry"}, "b"},  // a note
      {{{"text", "screening"}}, {"--text", "screening"}, "edba"},
      {{{"text", "0%"}}, {"--text", "0%"}, "a"},  // no letter means anything
      {{{"text", "d_2"}}, {"--text", "d_2"}, "b"},
      {{{"text", "!"}}, {"--text", "!"}, ""},
      {{{"text", "aee0"}}, {"--text", "aee0"}, "e"},  // how a guid begins
      {{{"text", "ee0"}}, {"--text", "ee0"}, ""},
  };
  for (const auto& row : rows) {
    const std::vector<std::string> found = GuidsOfAllPages(row.asked);
    std::vector<std::string> command{"runs", "--json", "--config", At("a")};
    command.insert(command.end(), row.options.begin(), row.options.end());
    std::string runs;
    for (const std::string& guid : found) {
      runs += guid[1];
    }
    EXPECT_EQ(runs, row.runs) << testing::PrintToString(row.options);
    EXPECT_EQ(found, Guids(Said(command).second)) << testing::PrintToString(row.options);
  }
}

// Pages of every size, while both stores get further runs, newer and older ones.
TEST_F(Api, GivesEachRunOnceWhileRunsAreAdded) {
  const std::vector<std::string> merged{"aee", "bee", "add", "bdd", "acc", "abb", "bcc", "bbb", "aaa", "baa"};
  for (const char* const limit : {"1", "2", "3", "10"}) {
    std::vector<std::string> found;
    std::string after;
    do {
      const std::string page = Ask("/api/runs", {{"limit", limit}, {"after", after}, {"until", "2026-11"}});
      for (const std::string& guid : Guids(page)) {
        if (guid.find("new") == std::string::npos) {
          found.push_back(guid.substr(0, 3));
        }
      }
      after = Next(page);
      ASSERT_LE(found.size(), merged.size()) << page;
      for (const char* const name : {"a", "b"}) {
        Sql(name)->RunScript(
            "INSERT INTO executions SELECT MAX(execution_id) + 1, 'new' || MAX(execution_id), NULL, MAX(execution_id) "
            "+ 1, 11, NULL, '', '', 5, '2026-10-04T23' FROM executions WHERE execution_id < 10000000000");
      }
    } while (after != "null");
    EXPECT_EQ(found, merged) << limit;
  }
}

// A search that finds little ends at a time, and goes on from there.
TEST_F(Api, EndsASearchAtATimeAndGoesOn) {
  const Store::Reader store(served.stores[0].settings.database);
  RunFilter filter;
  filter.text = "grid 1";
  std::vector<std::string> found;
  int searches = 0;
  for (bool more = true; more; ++searches) {
    ASSERT_LT(searches, 10);
    ListedRuns runs(store, filter, {});
    runs.EndAt(ListedRuns::Clock::time_point::min());
    while (runs.Next()) {
      found.push_back(runs.Run().root.guid);
    }
    more = runs.IsInterrupted();
    filter.after = more ? runs.Place() : RunPlace();
  }
  EXPECT_EQ(found, std::vector<std::string>{"aaa00000-1"});
  EXPECT_EQ(searches, 5);  // one for each run that does not have it, and the last one
}

TEST_F(Api, CutsWhatIsLong) {
  const std::string text(3'000'000, 'x');
  const SqlConnection sql = Sql("a");
  sql->RunScript("INSERT INTO executions VALUES (21, 'long', NULL, 21, 11, NULL, '\xC3\xA4" + text + "', '" + text +
                 "', 5, '2026-10-06T22:00:00.000000Z')");
  for (int note = 21; note < 32; ++note) {
    sql->RunScript("INSERT INTO notes VALUES (" + std::to_string(note) + ", 21, 'Ines', 'tag', '" +
                   std::to_string(note) + text + "', '2026-10-05T08')");
  }
  const std::string list = Ask("/api/runs", {{"store", "1"}, {"limit", "1"}}), one = Ask("/api/run", {{"run", "long"}});
  EXPECT_NE(
      list.find("\"node\":\"\xC3\xA4" + text.substr(0, 499) + "\",\"description\":\"" + text.substr(0, 500) + "\""),
      std::string::npos);
  EXPECT_EQ(All(list, "\"cut\":(\\w+)"), std::vector<std::string>{"true"});
  EXPECT_EQ(All(list, "\"text\":\"(..)").size(), 10U);
  EXPECT_EQ(All(list, "\"text\":\"(..)").front(), "22") << "the newest notes";
  EXPECT_LT(list.size(), 10'000U);
  EXPECT_EQ(All(one, "\"text\":\"(..)").size(), 11U);
  EXPECT_LT(one.size(), 1'500'000U);
  EXPECT_EQ(All(Ask("/api/runs", {{"store", "2"}}), "\"cut\":(true)").size(), 0U);
}

// 15 did not finish, nor did what is below it.
TEST_F(Api, CutsWhatIsLongWhereARunStopped) {
  const std::string text(3'000'000, 'x');
  const SqlConnection sql = Sql("a");
  sql->RunScript("INSERT INTO executions VALUES (17, 'a17', 15, 15, 12, 12, '" + text + "', '', 0, '2026-10-04T22')");
  sql->RunScript("INSERT INTO statuses VALUES (21, 17, 12, 4, '2026-10-04T22')");
  sql->RunScript("INSERT INTO events VALUES (21, 12, 17, NULL, 'Image', '2026-10-04T22:10:00.000000Z')");
  sql->RunScript("INSERT INTO parameters VALUES (21, 1, 'File', 'text', '" + text + "', NULL)");
  std::string more;
  for (int position = 2; position < 300; ++position) {
    more += (more.empty() ? "(21, " : ", (21, ") + std::to_string(position) + ", 'Dose', 'double', NULL, 2)";
  }
  sql->RunScript("INSERT INTO parameters VALUES " + more);
  const std::string run = Ask("/api/run", {{"run", "aee"}});
  const std::string cut = '"' + text.substr(0, 500) + '"';
  EXPECT_NE(run.find("{\"name\":\"File\",\"kind\":\"text\",\"value\":" + cut + "}"), std::string::npos);
  EXPECT_NE(run.find("\"node\":" + cut + ",\"activity\":\"Holes\",\"version\":\"2.1\"}]"), std::string::npos);
  EXPECT_EQ(All(run, "\"value\":(2)").size(), 99U);
  EXPECT_EQ(All(run, "\"cut\":(\\w+)"), std::vector<std::string>{"true"});
  EXPECT_LT(run.size(), 20'000U);
  EXPECT_EQ(All(Ask("/api/run", {{"run", "acc"}}), "\"cut\":(\\w+)"), std::vector<std::string>{"false"});
}

TEST_F(Api, SaysWhereARunStoppedAsTheVerbDoes) {
  Sql("a")->RunScript(
      "INSERT INTO events VALUES (21, 12, 16, NULL, 'Image', '2026-10-04T22:10:00.000000Z'), "
      "(22, 12, 15, NULL, 'Done', '2026-10-04T22:20:00.000000Z');"
      "INSERT INTO parameters VALUES (21, 1, 'File', 'text', 'a.mrc', NULL), (21, 2, 'Good', 'bool', "
      "NULL, 1), (21, 3, 'Tilt', 'double', 'NaN:1', NULL), (21, 4, 'Dose', 'double', NULL, 2.5)");
  const auto stops = [](const std::string& json) { return All(json, "(\\{\"in\":[^]*)\"log\":null"); };
  const std::vector<std::string> said = stops(Said({"show", "aee", "--json", "--config", At("a")}).second);
  ASSERT_EQ(said.size(), 1U);
  EXPECT_NE(said.front().find("2.5"), std::string::npos) << said.front();
  EXPECT_EQ(stops(Ask("/api/run", {{"run", "aee"}})), said);
}

// As answers have them.
TEST_F(Api, TakesNamesInTheirStoredForm) {
  Sql("a")->RunScript(
      "INSERT INTO sessions VALUES (21, 's21', '\\x53ff', 'pc', '2026-10', '', '', '');"
      "INSERT INTO activity_versions VALUES (21, 'v21', 11, '\\x41ff', '1', '');"
      "INSERT INTO executions VALUES (21, 'odd', NULL, 21, 21, 21, '\\x4eff', '', 5, '2026-10-06T22:00:00.000000Z')");
  for (const auto& [name, value] :
       Parameters{{"instrument", "\\x53ff"}, {"activity", "\\x41ff"}, {"node", "\\x4eff"}}) {
    EXPECT_EQ(Guids(Ask("/api/runs", {{"store", "1"}, {name, value}})), std::vector<std::string>{"odd"}) << name;
  }
}

TEST_F(Api, FindsTheRunThatIsNamed) {
  const struct {
    Parameters asked;
    const char* words;
  } rows[] = {
      {{{"run", "aaa"}}, "\"guid\":\"aaa00000-1\".*\"store\":1"},
      {{{"run", "baa00000-1"}}, "\"guid\":\"baa00000-1\".*\"store\":2"},  // in the first store that has it
      {{{"run", "last"}}, "\"guid\":\"aee00000-5\""},
      {{{"run", "last"}, {"store", "2"}}, "\"guid\":\"bee00000-5\""},
      {{{"run", "grid_2"}}, "\"guid\":\"abb00000-2\".*\"stops\":null"},
      {{{"run", "acc"}}, "\"state\":\"unknown\",\"why\":.*\"stops\":\\{\"in\":\\[\\{\"path\":\\[\\{\"guid\":\"acc"},
      {{{"run", "a"}}, "^400: several runs match 'a'; expected the guid of one of them: aaa00000-1, .*aee00000-5$"},
      {{{"run", "grid 3"}}, "^400: several runs match 'grid 3'.*acc00000-3, add00000-4$"},
      {{{"run", "zz"}}, "^404: no run matches 'zz'"},
      {{{"run", "aaa"}, {"store", "2"}}, "^404: no run matches 'aaa'"},
      {{{"run", "aaa"}, {"store", "3"}}, "^400: .*'store' is '3'"},
      {{}, "^400: .*'run' is missing"},
      {{{"run", "aaa"}, {"runs", "1"}}, "^400: .*'runs' is not known"},
  };
  for (const auto& row : rows) {
    const std::string said = Ask("/api/run", row.asked);
    EXPECT_TRUE(HasMatch(said, row.words)) << row.words << "\nin\n" << said;
  }
}

TEST_F(Api, ComparesAsTheVerbDoes) {
  const auto [code, said] = Said({"diff", "abb", "add", "--json", "--config", At("a"), "--tolerance", "0.5"});
  EXPECT_EQ(Ask("/api/compare", {{"run", "abb"}, {"with", "add"}, {"tolerance", "0.5"}}),
            "{\"store\":1,\"against_store\":1," + ReplaceMatches(said.substr(1), "\\}\n$", ",\"cut\":false}\n"));
  const std::string across = Ask("/api/compare", {{"run", "aaa"}, {"with", "baa"}, {"with_store", "2"}});
  EXPECT_NE(across.find("\"against_store\":2"), std::string::npos) << across;
  // the newest finished run like it
  Sql("a")->RunScript("INSERT INTO executions VALUES (22, 'later', NULL, 22, 12, 12, 'grid 5', '', 5, '2026-10-07')");
  EXPECT_EQ(Guids(ReplaceMatches(Ask("/api/compare", {{"run", "later"}}), "\"against\":", "")).back(), "abb00000-2");
  EXPECT_TRUE(HasMatch(Ask("/api/compare", {{"run", "aaa"}}), "^404: there is no finished run of activity 'Grids'"));
  EXPECT_TRUE(HasMatch(Ask("/api/compare", {{"run", "aaa"}, {"tolerance", "x"}}), "^400: "));
}

// Each of 150 holes has its own parameter, and one that they share.
TEST_F(Api, CountsWhatAShortComparisonLeavesOut) {
  const std::string text(10'000, 'x');
  for (const char* const name : {"a", "b"}) {
    std::string events, parameters;
    for (int event = 31; event < 181; ++event) {
      const std::string number = std::to_string(event), separator = events.empty() ? "(" : ", (";
      events += separator + number + ", 12, 14, NULL, 'Hole', '2026-10-03T22:20')";
      parameters += separator + number + ", 1, 'File', 'text', '" + name + number + text + "', NULL), (" + number +
                    ", 2, 'own " + number + "', 'text', '" + name + "', NULL)";
    }
    const SqlConnection sql = Sql(name);
    sql->RunScript("INSERT INTO events VALUES " + events);
    sql->RunScript("INSERT INTO parameters VALUES " + parameters);
  }
  const Parameters asked{{"run", "add"}, {"with", "bdd"}, {"with_store", "2"}};
  Parameters shortly = asked;
  shortly.emplace("first", "2");
  const std::string all = Ask("/api/compare", asked), few = Ask("/api/compare", shortly);
  EXPECT_EQ(All(all, "(\"parameter\":\"File\")").size(), 151U);  // in `summary` too
  EXPECT_EQ(all.find("left_out"), std::string::npos);
  EXPECT_EQ(All(few, "(\"parameter\":\"File\")").size(), 3U);
  EXPECT_EQ(All(few, "(\"parameter\":\"own )").size(), 2 * 99U + 1);  // and in `parting`
  EXPECT_NE(few.find("\"compared\":150,\"differ\":150,"), std::string::npos);
  EXPECT_TRUE(
      HasMatch(few,
               "\"same\":false,\"cut\":true,\"left_out\":\\{\"differences\":199,\"configuration\":0,\"summary\":51,"
               "\"steps\":0,\"texts\":[1-9]"))
      << few.substr(few.size() - 200);
  EXPECT_LT(few.size(), 60'000U);
  EXPECT_EQ(few.substr(0, few.find("\"differences\":")), all.substr(0, all.find("\"differences\":")));
}

TEST_F(Api, CutsLongTextsOfAComparison) {
  const std::string text(3'000'000, 'x');
  for (const char* const name : {"a", "b"}) {
    Sql(name)->RunScript("INSERT INTO parameters VALUES (12, 2, 'File', 'text', '" + (name + text) + "', NULL)");
  }
  const std::string all = Ask("/api/compare", {{"run", "add"}, {"with", "bdd"}, {"with_store", "2"}});
  EXPECT_NE(all.find("\"value\":\"a" + text.substr(1, 99'999) + "\",\"against\":\"b" + text.substr(1, 99'999) + '"'),
            std::string::npos);
  EXPECT_EQ(All(all, "\"cut\":(\\w+)"), std::vector<std::string>{"true"});
  EXPECT_LT(all.size(), 1'000'000U);
}

TEST_F(Api, NamesParametersWithTheirUnits) {
  EXPECT_TRUE(HasMatch(Ask("/api/parameters", {}),
                       R"(^\{"parameters":\[\n\{"name":"Dose","unit":"e/A2","events":\["Image"\],"kinds":\["double"\],)"
                       R"("last_at":"2026-10-03T22:10:00.000000Z"\}\],\n"cut":false,"errors":\[\]\}\n$)"))
      << Ask("/api/parameters", {});
}

// Grids 2 and 3 of 3,000 numbers, one each second; what grid 1 has is no part of the run.
TEST_F(Api, GivesTheNumbersOfARun) {
  const std::string at = TestStore::OnServer()
                             ? "to_char(TIMESTAMP '2026-10-03 22:00' + i * INTERVAL '1 second', "
                               "'YYYY-MM-DD\"T\"HH24:MI:SS') || '.000000Z'"
                             : "strftime('%Y-%m-%dT%H:%M:%S', '2026-10-03 22:00', i || ' seconds') || '.000000Z'";
  const std::string numbers = "WITH RECURSIVE n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 3999) ";
  const SqlConnection sql = Sql("a");
  sql->RunScript(numbers + "INSERT INTO events SELECT i, 12, 14, NULL, 'Tilt', " + at + " FROM n");
  sql->RunScript(numbers + "INSERT INTO parameters SELECT i, 1, 'Angle', 'double', NULL, i FROM n");
  sql->RunScript(numbers +
                 "INSERT INTO parameters SELECT i, 2, 'Angle', 'text', '-' || i || '.50', NULL FROM n "
                 "WHERE i < 1003");
  sql->RunScript(std::string("INSERT INTO parameters VALUES (1003, 2, 'Angle', 'text', 'flat', NULL), "
                             "(1004, 2, 'Angle', 'double', 'NaN:1', NULL), (1006, 2, 'Angle', 'bool', NULL, 1), "
                             "(1005, 2, 'Angle', 'double', NULL, ") +
                 (TestStore::OnServer() ? "'Infinity')" : "9e999)"));
  const auto ask = [&](Parameters more) {
    more.insert({{"run", "add"}, {"store", "1"}});
    return Ask("/api/run/numbers", more);
  };
  EXPECT_EQ(ask({{"event", "Image"}, {"parameter", "Dose"}}),
            "{\"store\":1,\"run\":\"add00000-4\",\"started_at\":\"2026-10-03T22:00:00.000000Z\",\"unit\":\"e/A2\","
            "\"numbers\":1,\"others\":0,\"points\":[[600000000,20,14]]}\n");
  EXPECT_NE(ask({{"event", "Tilt"}, {"parameter", "Angle"}, {"parameter_n", "2"}})
                .find("\"numbers\":4,\"others\":3,\"points\":[[1000000000,-1000.5,14],[1001000000,-1001.5,14],"
                      "[1002000000,-1002.5,14],[1006000000,1,14]]"),
            std::string::npos);
  EXPECT_NE(ask({{"parameter", "Angle"}}).find("\"numbers\":0,\"others\":0,\"points\":[]"), std::string::npos);
  const std::string many = ask({{"event", "Tilt"}, {"parameter", "Angle"}});
  EXPECT_NE(many.find("\"numbers\":3000,"), std::string::npos);
  const auto points = All(many, "\\[(\\d+),\\d+,14\\]");
  EXPECT_GT(points.size(), 1000U);
  EXPECT_LE(points.size(), 2000U);
  EXPECT_EQ(points.front(), "1000000000");  // the lowest
  EXPECT_EQ(points.back(), "3999000000");   // the highest
}

TEST_F(Api, NamesTheParametersOfARun) {
  Sql("a")->RunScript(
      "INSERT INTO events VALUES (21, 12, 16, NULL, 'Hole', '2026-10-04T22:10:00.000000Z');"
      "INSERT INTO parameters VALUES (21, 1, 'Thickness', 'double', NULL, 40)");
  const auto names = [&](const char* run) {
    return All(Ask("/api/parameters", {{"store", "1"}, {"run", run}}), "\"name\":\"(\\w+)");
  };
  EXPECT_EQ(names("aee"), std::vector<std::string>{"Thickness"});  // of a step
  EXPECT_EQ(names("add"), std::vector<std::string>{"Dose"});
  EXPECT_EQ(names("abb"), std::vector<std::string>{});
}

TEST_F(Api, SaysWhichStoresCannotBeRead) {
  served.stores.push_back({3, "", {}});
  served.stores.back().settings.database.where = (folder / "none.db").string();
  EXPECT_TRUE(
      HasMatch(Ask("/api/stores", {}),
               "\"store\":3,.*\"schema\":null,\"instruments\":\\[\\],\"activities\":\\[\\],\"error\":\"there "));
  for (const char* const path : {"/api/runs", "/api/parameters"}) {
    EXPECT_TRUE(HasMatch(Ask(path, {}), "\"errors\":\\[\\{\"store\":3,\"error\":\"there is no TS store")) << path;
    EXPECT_TRUE(HasMatch(Ask(path, {{"store", "3"}}), "^503: there is no TS store")) << path;
  }
}

TEST_F(Api, DocumentsEveryPath) {
  const std::string document = Ask("/api/openapi.json", {});
  std::set<std::string> paths, documented;
  for (const auto& [path, handler] : HandlersOf(served)) {
    paths.insert(path);
  }
  for (const auto& match : MatchesIn(document.substr(0, document.find("\"components\": ")), "\n    \"(/[^\"]*)\": ")) {
    documented.insert(match[1]);
  }
  EXPECT_EQ(documented, paths);
}

TEST_F(Api, AsksQuestionsThatIndexesAnswer) {
  const struct {
    const char* path;
    Parameters asked;
  } rows[] = {
      {"/api/stores", {}},
      {"/api/runs", {{"limit", "2"}}},
      {"/api/runs", {{"after", "1-13"}}},
      {"/api/runs", {{"after", "1-13"}, {"state", "finished"}, {"activity", "Grids"}}},
      {"/api/runs", {{"after", "1-13"}, {"text", "grid"}, {"since", "2026-01"}, {"until", "2027-01"}}},
      {"/api/runs", {{"after", "1-15"}, {"state", "unknown"}}},
      {"/api/runs", {{"after", "1-15"}, {"instrument", "Scope 7"}, {"where", "Dose > 10"}}},
      {"/api/runs", {{"after", "1-15"}, {"node", "grid 3"}, {"state", "unfinished"}}},
      {"/api/run", {{"run", "acc"}}},
      {"/api/run/data", {{"run", "acc"}, {"with", "aaa"}}},
      {"/api/compare", {{"run", "aee"}}},
      {"/api/parameters", {}},
      {"/api/parameters", {{"run", "aee"}}},
      {"/api/run/numbers", {{"run", "aee"}, {"event", "Image"}, {"parameter", "Dose"}}},
  };
  std::set<std::string> questions;
  Store::questionListener = [&](const std::string& question) { questions.insert(question); };
  for (const auto& row : rows) {
    const std::size_t before = questions.size();
    EXPECT_EQ(Ask(row.path, row.asked).front(), '{') << Ask(row.path, row.asked);
    EXPECT_GT(questions.size(), before) << row.path << testing::PrintToString(row.asked);
  }
  Store::questionListener = nullptr;
  bool paged = false;
  for (const std::string& question : questions) {
    const std::string plan = Plan(question);
    EXPECT_FALSE(
        HasMatch(plan,
                 "SCAN (?!CONSTANT|first|running|seals|stores|ts_schema|sqlite_|newest|(sessions|events) "
                 "USING "
                 "COVERING|v\\b|up\\b)|Seq Scan on (?!activity_versions|running|seals|sessions|ts_schema|stores)"))
        << question << '\n'
        << plan;
    if (question.find("WHERE e.parent_id IS NULL AND e.started_at >= ?1") != std::string::npos) {
      const bool isLater = question.find("<= ?7") != std::string::npos;
      paged = paged || isLater;
      if (!TestStore::OnServer()) {
        EXPECT_NE(plan.find(isLater ? "executions_by_parent (parent_id=? AND started_at>? AND started_at<?)"
                                    : "executions_by_parent (parent_id=? AND started_at>?)"),
                  std::string::npos)
            << question << plan;
        EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << question << plan;
      }
    }
  }
  EXPECT_TRUE(paged) << "no page begins behind another one";
}

}  // namespace
