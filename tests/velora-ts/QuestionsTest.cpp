// Every question that a verb asks is answered by an index, as the database itself plans it.

#include "CommandLine.h"
#include "ToolTest.h"
#include "output/EventLines.h"
#include "store/reading/Listener.h"
#include "store/reading/Reader.h"
#include "store/record/Records.h"
#include "store/schema/Tables.h"
#include "store/settings/Settings.h"

#include <iterator>
#include <map>
#include <regex>
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
    {"check", {"it counts every table"}},
    {"copy", {"it copies every row"}},
    {"init", {"it opens no store"}},
    {"prepare", {"it reads no records"}},
    {"seal", {"it seals every run that is finished"}},
    {"verify", {"it compares every record with its seal"}},
    {"export",
     {nullptr,
      {"last", "last --format csv", "last --format trace", "--since 2026-01-01", "--since 2026-01-01 --format csv",
       "--since 2026-01-01 --format trace"}}},
    {"runs",
     {nullptr,
      {"", "--instrument Scope",
       "--since 2026-01-01 --instrument Scope --activity TiltSeries --unfinished --json --limit 1"}}},
    {"show", {nullptr, {"last --tree --events", "0ecba827 --events --columns TiltAngle --json", "grid.mdoc"}}},
    {"report", {nullptr, {"last -o /dev/null"}}},
    {"tail", {nullptr, {""}}},
};

class Questions : public ToolTest {
 protected:
  /// Does within this process what the program does. @return its exit code.
  static int Execute(const std::string& command) {
    std::istringstream words("velora-ts " + command);
    const std::vector<std::string> given{std::istream_iterator<std::string>(words), {}};
    std::vector<const char*> pointers;
    for (const std::string& word : given) {
      pointers.push_back(word.c_str());
    }
    testing::internal::CaptureStdout();
    const int result = RunCommandLine(static_cast<int>(pointers.size()), pointers.data());
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
    return Query(*sql, "EXPLAIN " + std::regex_replace(question, std::regex(R"(\?\d)"), "'1'"));
  }
};

TEST_F(Questions, AreAnsweredByIndexes) {
  BringUp();
  Tool("--help");
  static const std::regex line(R"(\n  (\w+)  +[A-Z])");
  for (std::sregex_iterator at(said.begin(), said.end(), line), end; at != end; ++at) {
    EXPECT_EQ(verbs.count((*at)[1]), 1U) << "what does " << (*at)[1] << " ask?";
  }
  const std::string asked = Asked();
  std::set<std::string> questions;
  Velora::Store::questionListener = [&](const std::string& question) { questions.insert(question); };
  EventsOfRunSince(Velora::Store::Reader(Velora::Store::ReadSettings(asked).database), 0,
                   0);  // tail's, once it has looked
  for (const auto& [name, verb] : verbs) {
    const std::size_t before = questions.size();
    for (const std::string& arguments : verb.arguments) {
      EXPECT_EQ(Execute(name + " --config " + asked + ' ' + arguments), Done) << name << ' ' << arguments;
    }
    EXPECT_TRUE(verb.readsAllBecause != nullptr || questions.size() > before) << name;
  }
  Velora::Store::questionListener = nullptr;
  for (const std::string& question : questions) {
    const std::string plan = Plan(question);
    EXPECT_FALSE(std::regex_search(
        plan, std::regex("SCAN (?!CONSTANT|first|running|ts_schema|sqlite_)|Seq Scan on (?!running|ts_schema)")))
        << question << '\n'
        << plan;
    if (!TestStore::OnServer() &&
        question.find("WHERE e.parent_id IS NULL AND e.started_at >= ?1") != std::string::npos) {  // runs, until enough
      EXPECT_NE(plan.find("executions_by_parent (parent_id=? AND started_at>?)"), std::string::npos) << plan;
      EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << question << '\n' << plan;
    }
  }
}

TEST(Records, HaveAKindForEveryTableButThatOfSeals) {
  std::set<std::string> ofKinds = {"seals"};
  for (const Velora::Store::Kind kind : Velora::Store::kinds) {
    ofKinds.insert(Velora::Store::TableOf(kind).name);
  }
  for (const Velora::Store::Table& table : Velora::Store::Tables()) {
    EXPECT_EQ(ofKinds.count(table.name), 1U) << table.name;
  }
}

}  // namespace
