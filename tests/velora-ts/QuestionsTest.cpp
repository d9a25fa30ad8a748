// Every question that a verb asks is answered by an index, as the database itself plans it.

#include "ToolTest.h"
#include "reading/EventRows.h"
#include "reading/Listener.h"
#include "reading/Store.h"
#include "verbs/EventLines.h"
#include "verbs/Verbs.h"

#include <functional>
#include <map>
#include <regex>
#include <set>

namespace {

using Quor::TolvaServices::Local::Database;
using namespace Velora::Ts;
using Call = std::function<ExitCode(const Database&)>;

struct Verb {
  const char* readsAllBecause = nullptr;
  std::vector<Call> calls{};
};

std::vector<Call> Exports() {
  std::vector<Call> calls;
  for (const char* format : {"jsonl", "csv", "trace"}) {
    calls.emplace_back([=](const Database& database) { return ExportRun(database, "last", format); });
    calls.emplace_back([=](const Database& database) { return ExportSpan(database, "2026", "", format); });
  }
  return calls;
}

const std::map<std::string, Verb> verbs = {
    {"backup", {"it copies every page"}},
    {"check", {"it counts every table"}},
    {"copy", {"it copies every row"}},
    {"init", {"it opens no store"}},
    {"prepare", {"it reads no records"}},
    {"seal", {"it seals every run that is finished"}},
    {"verify", {"it compares every record with its seal"}},
    {"export", {nullptr, Exports()}},
    {"runs",
     {nullptr,
      {[](const Database& database) { return ListRuns(database, {}); },
       [](const Database& database) {
         return ListRuns(database, {"2026", "veldmar-pc", "TiltSeries", true, true, 1});
       }}}},
    {"show",
     {nullptr,
      {[](const Database& database) {
         return ShowRun(database, "last", {true, true, {}, false});
       },
       [](const Database& database) {
         return ShowRun(database, "0ecba827", {false, true, {"TiltAngle"}, true});
       },
       [](const Database& database) { return ShowRun(database, "grid.mdoc", {}); }}}},
    {"report", {nullptr, {[](const Database& database) { return Report(database, "last", "/dev/null"); }}}},
    {"tail",
     {nullptr,
      {[](const Database& database) { return Tail(database, ""); },
       [](const Database& database) {  // what it asks from its second look on
         EventsOfRunSince(Store(database), 0, 0);
         return Done;
       }}}},
};

class Questions : public ToolTest {
 protected:
  /// The store that is asked: the file, or a copy of it on a server.
  Database Asked() const {
    const Database file{Database::Kind::Sqlite, folder / "ts.db"};
    if (!TestStore::OnServer()) {
      return file;
    }
    const TestStore store(folder / "ts.db");
    store.Make();
    const Database server{Database::Kind::PostgreSql, store.Connection()};
    testing::internal::CaptureStdout();
    EXPECT_EQ(CopyStore(file, server), Done);
    testing::internal::GetCapturedStdout();
    return server;
  }
  std::string Plan(const std::string& question) const {
    if (!TestStore::OnServer()) {
      return Query(folder / "ts.db", "EXPLAIN QUERY PLAN " + question);
    }
    soci::session sql;
    TestStore(folder / "ts.db").Open(sql);
    sql << "SET enable_seqscan = off";  // of a small table it would read all, whatever the indexes
    return Query(sql, "EXPLAIN " + std::regex_replace(question, std::regex(R"(\?\d)"), "'1'"));
  }
};

TEST_F(Questions, AreAnsweredByIndexes) {
  BringUp();
  Tool("--help");
  static const std::regex line(R"(\n  (\w+)  +[A-Z])");
  for (std::sregex_iterator at(said.begin(), said.end(), line), end; at != end; ++at) {
    EXPECT_EQ(verbs.count((*at)[1]), 1U) << "what does " << (*at)[1] << " ask?";
  }
  const Database asked = Asked();
  std::set<std::string> questions;
  for (const auto& [name, verb] : verbs) {
    const std::size_t before = questions.size();
    questionListener = [&](const std::string& question) { questions.insert(question); };
    for (const Call& call : verb.calls) {
      testing::internal::CaptureStdout();
      EXPECT_EQ(call(asked), Done) << name;
      testing::internal::GetCapturedStdout();
    }
    questionListener = nullptr;
    EXPECT_TRUE(verb.readsAllBecause != nullptr || questions.size() > before) << name;
  }
  for (const std::string& question : questions) {
    const std::string plan = Plan(question);
    EXPECT_FALSE(std::regex_search(plan, std::regex("SCAN (?!CONSTANT|ts_schema|sqlite_)|Seq Scan on (?!ts_schema)")))
        << question << '\n'
        << plan;
    if (!TestStore::OnServer() &&
        question.find("LIMIT ?4") != std::string::npos) {  // runs, which stops when it has enough
      EXPECT_NE(plan.find("executions_by_parent (parent_id=? AND started_at>?)"), std::string::npos) << plan;
      EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << question << '\n' << plan;
    }
  }
}

}  // namespace
