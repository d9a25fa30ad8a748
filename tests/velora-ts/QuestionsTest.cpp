// Every question that a verb asks is answered by an index, as the database itself plans it.

#include "CommandLine.h"
#include "ToolTest.h"
#include "asking/KeptTrends.h"
#include "asking/Trends.h"
#include "output/EventLines.h"
#include "serving/Routes.h"
#include "serving/Served.h"
#include "serving/http/Answer.h"
#include "serving/http/Question.h"
#include "store/comparing/Reference.h"
#include "store/reading/Listener.h"
#include "store/reading/Reader.h"
#include "store/record/Records.h"
#include "store/schema/Tables.h"
#include "store/settings/Settings.h"
#include "support/Patterns.h"
#include "support/TakenIn.h"
#include "support/TestStore.h"
#include "watching/StoreWatch.h"

#include <sqlite3.h>

#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace {

using namespace Velora::Ts;

struct Verb {
  const char* readsAllBecause = nullptr;
  std::vector<std::string> arguments{};  // of each command line to try
};

const std::map<std::string, Verb> verbs = {
    {"backup", {"it copies every page"}},
    {"check", {"it counts the first rows of every table"}},
    {"copy", {"it copies every row"}},
    {"forward", {"it needs a server, and reads what is behind a key of each table"}},
    {"init", {"it opens no store"}},
    {"prepare", {"it reads no records"}},
    {"serve", {"it answers until it is ended; AskWhatServeAsks() asks what it asks"}},
    {"rotate", {"it seals and verifies every record"}},
    {"verify", {"it compares every record with its seal"}},
    {"events",
     {nullptr,
      {"--since 2025-01-01 --until 2026-12-01 --instrument veldmar-pc --activity TiltSeries",
       "--since 2025-01-01 --where Voltage>40 --csv"}}},
    {"diff", {nullptr, {"0ecba827 0ecba827 --json"}}},
    {"prove", {nullptr, {"last -o /dev/null"}}},
    {"parameters", {nullptr, {"last --name ZValue", "--since 2025-01-01"}}},
    {"stats",
     {nullptr,
      {"TiltAngle --since 2025-01-01 --until 2026-12-01 --instrument veldmar-pc --activity TiltSeries",
       "TiltAngle --by run --json", "TiltAngle --by activity", "TiltAngle --by instrument"}}},
    {"export",
     {nullptr,
      {"last", "last --format csv", "last --format trace", "--since 2026-01-01", "--since 2026-01-01 --format csv",
       "--since 2026-01-01 --format trace"}}},
    {"runs",
     {nullptr,
      {"", "--instrument Scope", "--node grid.mdoc --unfinished", "--state finished --text grid",
       "--since 2026-01-01 --instrument Scope --activity TiltSeries --unfinished --json --limit 1"}}},
    {"seal", {nullptr, {"", ""}}},  // what was added since it was signed
    {"show", {nullptr, {"last --tree --events", "0ecba827 --events --columns TiltAngle --json", "grid.mdoc"}}},
    {"note", {"it asks only for the run, as others do", {"last dry --kind cause"}}},
    {"report", {nullptr, {"last -o /dev/null", "last --against last -o /dev/null"}}},
    {"tail", {nullptr, {""}}},
    {"watch", {"it looks until it is ended; AskWhatServeAsks() asks what it asks"}},
};

class Questions : public ToolTest {
 protected:
  /// Does within this process what the program does. @return its exit code.
  static int Execute(const std::string& command) {
    std::istringstream words("velora-ts " + command);
    const std::vector<std::string> given{std::istream_iterator<std::string>(words), {}};
    testing::internal::CaptureStdout();
    const int result = RunCommandLine(given);
    testing::internal::GetCapturedStdout();
    return result;
  }
  /// The folder with the settings of the store that is asked: the file, or a copy of it on a server.
  std::string Asked() const {
    if (!TestStore::OnServer()) {
      return folder.path.string();
    }
    const TestStore store(folder / "ts.db");
    store.Make();
    create_directory(folder / "server");
    folder.Write("server/TSAL.config", "<TSAL><Database " + store.Attributes("") + "/></TSAL>");
    EXPECT_EQ(Execute("copy " + folder.path.string() + ' ' + (folder / "server").string()), Done);
    return (folder / "server").string();
  }
  std::string Plan(const std::string& question) const {
    if (!TestStore::OnServer()) {
      return Query(folder / "ts.db", "EXPLAIN QUERY PLAN " + question);
    }
    const SqlConnection sql = TestStore(folder / "ts.db").Open();
    sql->RunScript("SET enable_seqscan = off");  // of a small table it would read all, whatever the indexes
    return Query(*sql, "EXPLAIN " + ReplaceMatches(question, R"(\?(\d+))", "'$1'"));
  }
};

/// Looks at a store, which is all that watch does, and asks at each path.
void AskWhatServeAsks(const std::string& asked) {
  Served served;
  served.stores.push_back({1, asked, Velora::Store::ReadSettings(asked)});
  StoreWatch(WatchedStore{1, asked, served.stores.front().settings}, {"TiltAngle"}).Look();
  Trends trends;
  served.trends = &trends;
  const struct {
    const char* path;
    Velora::Http::Question::Parameters parameters;
  } rows[] = {
      {"/api/stores", {}},
      {"/api/parameters", {}},
      {"/api/run", {{"run", "last"}}},
      {"/api/run/data", {{"run", "last"}, {"with", "last"}}},
      {"/api/compare", {{"run", "last"}, {"with", "last"}, {"first", "3"}}},
      {"/api/trends", {{"parameter", "TiltAngle"}}},
      {"/api/trends", {{"parameter", "TiltAngle"}, {"since", "2025-01-01"}, {"until", "2026-12-01"}}},
      {"/api/trends", {{"parameter", "TiltAngle"}, {"by", "instrument"}, {"activity", "TiltSeries"}}},
      {"/api/trends", {{"parameter", "TiltAngle"}, {"by", "activity"}, {"instrument", "veldmar-pc"}}},
  };
  const auto handlers = HandlersOf(served);
  for (const auto& row : rows) {
    Velora::Http::Question question(row.parameters);
    const Velora::Http::Answer answer = handlers.at(row.path).answer(question);
    if (answer.write) {
      answer.write([](std::string_view /*piece*/) {});
    }
  }
}

TEST_F(Questions, AreAnsweredByIndexes) {
  BringUp();
  Tool("--help");
  for (const auto& line : MatchesIn(said, R"(\n  (\w+)  +[A-Z])")) {
    EXPECT_EQ(verbs.count(line[1]), 1U) << "what does " << line[1] << " ask?";
  }
  EXPECT_EQ(Shell("openssl genpkey -algorithm ed25519 -out key.pem"), 0) << said;
  const std::string signing = " --key " + (folder / "key.pem").string() + " --signer ines";
  if (TestStore::OnServer()) {  // where the records are sealed that are copied to it
    EXPECT_EQ(Execute("seal --config " + folder.path.string() + signing), Done);
  }
  const std::string asked = Asked();
  std::set<std::string> questions;
  Velora::Store::questionListener = [&](const std::string& question) { questions.insert(question); };
  {
    Velora::Store::Reader store(Velora::Store::ReadSettings(asked).database);
    EventsOfRunSince(store, 0, {});  // tail's, once it has looked
    ReferenceOf(store, {}, store);   // diff's, without a second run
    Trends().Answer({{1, store.Where()}}, {"TiltAngle", {.from = "2025-01-01", .activity = "TiltSeries"}, "activity"});
    if (!TestStore::OnServer()) {
      KeptTrends().Of(1, store, "TiltAngle");
    }
  }
  EXPECT_EQ(Execute("seal --config " + asked + signing), Done);
  const std::string event = Query(folder / "ts.db", "SELECT MIN(event_id) FROM events");
  EXPECT_EQ(Execute("prove --config " + asked + " -o /dev/null " + event), Done);
  for (const auto& [name, verb] : verbs) {
    if (name == "report" && !WITH_PAGE) {
      continue;
    }
    const std::size_t before = questions.size();
    for (const std::string& arguments : verb.arguments) {
      EXPECT_EQ(Execute(name + " --config " + asked + ' ' + arguments), Done) << name << ' ' << arguments;
    }
    EXPECT_TRUE(verb.readsAllBecause != nullptr || questions.size() > before) << name;
  }
  AskWhatServeAsks(asked);
  Velora::Store::questionListener = nullptr;
  for (const std::string& question : questions) {
    const std::string plan = Plan(question);
    EXPECT_FALSE(HasMatch(
        plan,
        "SCAN (?!CONSTANT|first|heard|newest|running|seals|stores|ts_schema|sqlite_|up\\b|v\\b|(sessions|events) USING "
        "COVERING INDEX)|Seq Scan on (?!arrivals|running|seals|sessions|ts_schema|stores)"))
        << question << '\n'
        << plan;
    if (question.find("v.at < ?2 AND (?3") != std::string::npos && question.find("root_id =") == std::string::npos) {
      EXPECT_TRUE(HasMatch(plan, "events_by_time \\(at>\\? AND at<\\?\\)|Index Cond: \\(\\(+(at|event_id) >= "))
          << question << '\n'
          << plan;
      EXPECT_EQ(plan.find("parameters_20"), std::string::npos) << "the partition of another month: " << plan;
      EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << "not in the order of the index: " << plan;
    }
    if (!TestStore::OnServer() &&
        question.find("WHERE e.parent_id IS NULL AND e.started_at >= ?1") != std::string::npos) {  // runs, until enough
      EXPECT_NE(plan.find("executions_by_parent (parent_id=? AND started_at>?"), std::string::npos) << plan;
      EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << question << '\n' << plan;
    }
  }
  NEEDS_PAGE();  // above, for the questions of report
}

/// What SQLite did since the start, in all connections.
long long steps = 0;

int CountSteps(sqlite3* connection, char** /*error*/, const struct sqlite3_api_routines* /*routines*/) {
  const auto count = [](void* /*unused*/) {
    ++steps;
    return 0;
  };
  sqlite3_progress_handler(connection, 1, count, nullptr);
  return SQLITE_OK;
}

class Growth : public Questions {
 protected:
  /// Makes a store with finished runs of two executions, and an instrument without runs.
  void Fill(int runs) {
    EXPECT_EQ(Shell("rm -f ts.db*"), 0);
    EXPECT_EQ(Execute("prepare --config " + folder.path.string()), Done);
    const SqlConnection sql = OpenFile(folder / "ts.db");
    sql->RunScript(
        "BEGIN; INSERT INTO sessions VALUES (1, 's', 'Scope', '', '2026', '', '', ''), (2, 't', 'Idle', '', '2026', "
        "'', '', ''); CREATE TEMP TABLE numbers AS WITH RECURSIVE n(n) AS (VALUES (1) UNION ALL SELECT n + 1 FROM n "
        "WHERE n < " +
        std::to_string(runs * 2) +
        ") SELECT n FROM n; INSERT INTO executions SELECT n, 'guid ' || n, CASE n % 2 WHEN 0 THEN n - 1 END, n - (n + "
        "1) % 2, 1, NULL, 'grid ' || n, '', 5, '2026' FROM numbers;"
        "INSERT INTO statuses SELECT n, n, 1, 4, '' FROM numbers;"
        "INSERT INTO statuses SELECT NULL, n, 1, 14, '' FROM numbers;"
        "INSERT INTO events SELECT n, 1, n, NULL, 'e', '2026' FROM numbers;"
        "INSERT INTO parameters SELECT n, 1, 'p', 'int', NULL, 1 FROM numbers; COMMIT");
  }
  void AddRun() const {
    OpenFile(folder / "ts.db")
        ->RunScript(
            "INSERT INTO executions SELECT MAX(execution_id) + 1, 'new ' || MAX(execution_id), NULL, "
            "MAX(execution_id) + 1, 1, NULL, 'new', '', 5, '2026' FROM executions WHERE execution_id < 10000000000; "
            "INSERT INTO statuses SELECT (SELECT MAX(status_id) + 1 FROM statuses WHERE status_id < 10000000000), "
            "MAX(execution_id), 1, 14, '' FROM executions WHERE execution_id < 10000000000");
  }
  long long StepsOf(const std::string& command) const {
    const long long before = steps;
    // A file that has other stores is for reading, which check finds.
    EXPECT_LE(Execute(command + " --config " + folder.path.string()), Found) << command;
    return steps - before;
  }
};

TEST_F(Growth, NoQuestionReadsMoreWhenMoreIsRecorded) {
  const auto counting = reinterpret_cast<void (*)()>(&CountSteps);
  ASSERT_EQ(sqlite3_auto_extension(counting), SQLITE_OK);
  constexpr int few = 1100, many = 3300;  // more than check counts
  struct Row {
    const char* command;
    int stepsForEachRun = 0;  // reading its seal
    long long ofFew = 0, ofMany = 0;
  } rows[] = {{"seal", 25}, {"check"}, {"runs"}, {"runs --unfinished"}, {"runs --instrument Idle"}, {"show new"}};
  for (const int runs : {few, many}) {
    Fill(runs);
    EXPECT_EQ(Execute("seal --config " + folder.path.string()), Done);
    AddRun();
    for (Row& row : rows) {
      (runs == few ? row.ofFew : row.ofMany) = StepsOf(row.command);
    }
  }
  for (const Row& row : rows) {
    EXPECT_LT(row.ofMany, row.ofFew * 11 / 10 + row.stepsForEachRun * (many - few)) << row.command << ' ' << row.ofFew;
  }
  sqlite3_cancel_auto_extension(counting);
}

// As at a facility: the run that is asked for was recorded there, or by an instrument.
TEST_F(Growth, NoQuestionReadsMoreWhenMoreStoresAreTakenIn) {
  const auto counting = reinterpret_cast<void (*)()>(&CountSteps);
  ASSERT_EQ(sqlite3_auto_extension(counting), SQLITE_OK);
  Fill(400);
  TakeInItself(*OpenFile(folder / "ts.db"), 2);
  const auto measure = [&] {
    AddRun();
    std::map<std::string, long long> all;
    for (const char* command : {"seal", "check", "runs", "runs --unfinished", "show last"}) {
      all[command] = StepsOf(command);
    }
    const Velora::Store::Reader store(Velora::Store::ReadSettings(folder.path.string()).database);
    for (const long long root : {1LL, 20'000'000'001LL}) {
      const long long before = steps;
      EventsOfRunSince(store, root, LaterEvents(store, root)).Next();
      all["tail " + std::to_string(root)] = steps - before;
    }
    return all;
  };
  EXPECT_EQ(Execute("seal --config " + folder.path.string()), Done);
  const auto ofTwo = measure();
  for (const long long number : {3, 4, 5}) {
    TakeInItself(*OpenFile(folder / "ts.db"), number);
  }
  for (const auto& [command, count] : measure()) {
    EXPECT_LT(count, ofTwo.at(command) * 11 / 10 + 500) << command << ofTwo.at(command);
  }
  sqlite3_cancel_auto_extension(counting);
}

TEST(Records, HaveAKindForEveryTableButThoseOfSealsAndTheirTree) {
  std::set<std::string> ofKinds = {"seals", "tree_leaves", "tree_parts"};
  for (const Velora::Store::Kind kind : Velora::Store::kinds) {
    ofKinds.insert(Velora::Store::TableOf(kind).name);
  }
  for (const Velora::Store::Table& table : Velora::Store::Tables()) {
    EXPECT_EQ(ofKinds.count(table.name), 1U) << table.name;
  }
}

}  // namespace
