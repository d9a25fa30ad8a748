// Which differences diff finds between two runs, and what the verb makes of them.

#include "ToolTest.h"
#include "store/comparing/Comparison.h"
#include "store/comparing/Summary.h"
#include "store/reading/Reader.h"
#include "store/settings/Settings.h"
#include "support/Patterns.h"
#include "support/TestStore.h"

#include <numeric>

namespace {

using namespace Quor::TolvaServices;
using namespace Velora::Store;
using namespace std::string_literals;
using Kind = Compared::Kind;

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, at);) {
    parts.push_back(part);
  }
  return parts;
}

class Diff : public WithTool<InFolder> {
 protected:
  Diff() { Use("."); }

  /// Makes the folder of a store and records into it.
  void Use(const std::string& name) {
    create_directories(folder / name);
    const TestStore store(folder / name / "ts.db");
    store.Make();
    folder.Write(name + "/TSAL.config",
                 "<TSAL Instrument='Veldmar 3'><Database " + store.Attributes("ts.db") + "/></TSAL>");
    for (const std::string version : {"1", "2"}) {
      folder.Write(name + "/" + version + ".xml",
                   "<Activities><Activity Name='All'><ActivityVersion Name='Hole' Version='" + version +
                       "'/></Activity></Activities>");
    }
    Types::TSInstance::SetTsalPath((folder / name).string());
    Types::TSInstance::BeginSession();
    for (const std::string version : {"1", "2"}) {
      versions[version] = Methods::ActivityMethods::RegisterAndGetActivityVersions(
                              (folder / name / (version + ".xml")).string(), Types::SessionHandle::Empty)
                              .at("Hole");
    }
  }

  /// Records a run of NODE@VERSION{EVENT:NAME=VALUE,...;...} and so on, in which a node that ends with '!' does not
  /// finish and what has no node belongs to the run itself. @return its guid.
  std::string Record(const std::string& description) {
    now += 1'000'000'000;
    Types::ActivityExecution run = Begin("run", nullptr);
    for (const auto& child : MatchesIn(description, R"(([^ {}@]*)(@(\d))?\{([^}]*)\})")) {
      if (child[1].empty()) {
        RecordEvents(child[4], run);
        continue;
      }
      std::string node = child[1];
      const bool stops = node.ends_with('!');
      node.erase(node.size() - (stops ? 1 : 0));
      Types::ActivityExecution execution = Begin(node, &run, child[3]);
      RecordEvents(child[4], execution);
      if (!stops) {
        Finish(execution);
      }
    }
    Finish(run);
    return run.Id.GetGuid();
  }

  /// All differences in short: +X and -X are in one run alone, ~X comes in another order.
  std::string Compare(const std::string& one, const std::string& other, const ComparisonRules& rules = Untimed()) {
    return CompareRuns(Record(one), Record(other), rules);
  }
  std::string CompareRuns(const std::string& guid, const std::string& otherGuid,
                          const ComparisonRules& rules = Untimed()) {
    const Reader store(ReadSettings((folder / ".").string()).database);
    const auto first = RunsNamed(store, guid).at(0), second = RunsNamed(store, otherGuid).at(0);
    const Comparison comparison({store, first}, {store, second}, rules);
    std::string differences;
    Summary summary;
    comparison.Visit([&](const Compared& compared) {
      summary.Add(compared);
      differences += compared.differs ? (differences.empty() ? "" : " ") + InShort(comparison, compared) : "";
    });
    parting = summary.Parting() != nullptr ? InShort(comparison, *summary.Parting()) : "";
    return differences;
  }
  std::string parting;

  static ComparisonRules Untimed() {
    ComparisonRules rules;
    rules.shortestDifference = 1e9;
    return rules;
  }

  /// Records a run with events A that have these numbers, and another number each time.
  std::string RecordSeries(const std::vector<int>& numbers) {
    const std::string guid = Record("");
    const SqlConnection sql = TestStore(folder / "." / "ts.db").Open();
    const std::string execution =
        std::to_string(*sql->Find<long long>("SELECT execution_id FROM executions WHERE guid = ?1", guid));
    std::string events;
    for (const int number : numbers) {
      events += (events.empty() ? "" : ",") + ("(1," + execution) + ",'A','2026-11-26T10:00:00." +
                std::to_string(100000 + number) + "Z')";
    }
    sql->RunScript("INSERT INTO events (session_id, execution_id, name, at) VALUES " + events +
                   "; INSERT INTO parameters SELECT event_id, 1, 'n', 'int', NULL, CAST(substr(at, 21, 6) AS INTEGER) "
                   "FROM events WHERE execution_id = " +
                   execution +
                   "; INSERT INTO parameters SELECT event_id, 2, 'noise', 'int', NULL, event_id FROM events "
                   "WHERE execution_id = " +
                   execution);
    return guid;
  }

 private:
  Types::ActivityExecution Begin(const std::string& node, const Types::ActivityExecution* parent,
                                 const std::string& version = "") {
    Types::ActivityExecution execution;
    execution.Node = node;
    execution.Parent = parent;
    if (!version.empty()) {
      execution.ActivityVersion = versions.at(version);
    }
    Save(execution, Types::Enums::ActivityExecStatus::Running);
    return execution;
  }
  void Finish(Types::ActivityExecution& execution) { Save(execution, Types::Enums::ActivityExecStatus::Done); }
  void Save(Types::ActivityExecution& execution, Types::Enums::ActivityExecStatus status) {
    execution.Status = {status, Types::DateTimeOffset::FromMicroseconds(now += 1'000'000)};
    Methods::ActivityMethods::SaveActivityExecution(execution, Types::SessionHandle::Empty);
  }

  void RecordEvents(const std::string& events, const Types::ActivityExecution& execution) {
    for (const std::string& text : Split(events, ';')) {
      Types::InstrumentEvent event;
      event.Name = text.substr(0, text.find(':'));
      event.TimeStamp = Types::DateTimeOffset::FromMicroseconds(now += 1'000'000);
      for (const std::string& parameter : Split(text.substr(std::min(text.find(':'), text.size() - 1) + 1), ',')) {
        if (const std::size_t end = parameter.find('='); end != std::string::npos) {
          event.Parameters.push_back(Parameter(parameter.substr(0, end), parameter.substr(end + 1)));
        }
      }
      Methods::LoggingMethods::SaveEvent(event, Types::Tsid(), &execution.Id, false, Types::SessionHandle::Empty);
    }
  }
  static std::shared_ptr<Types::InstrumentParameterBase> Parameter(const std::string& name, const std::string& value) {
    if (value == "true") {
      return std::make_shared<Types::InstrumentParameterBoolean>(name, true);
    }
    if (value.starts_with('\'')) {
      return std::make_shared<Types::InstrumentParameterString>(name, value.substr(1));
    }
    return std::make_shared<Types::InstrumentParameterDouble>(name, std::stod(value));
  }

  static std::string InShort(const Comparison& comparison, const Compared& compared) {
    const bool isFirst = compared.first != Matching::none;
    const RunTree& tree = isFirst ? comparison.First() : comparison.Second();
    const TreeNode& node = tree.At(isFirst ? compared.first : compared.second);
    std::string words = !compared.IsInBoth()                                                ? isFirst ? "+" : "-"
                        : compared.kind == Kind::Order || compared.kind == Kind::EventOrder ? "~"
                                                                                            : "";
    words += node.node + (node.ordinal > 1 ? '(' + std::to_string(node.ordinal) + ')' : "");
    if (!compared.event.empty()) {
      words += '/' + compared.event + std::to_string(isFirst ? compared.firstOccurrence : compared.secondOccurrence);
    }
    if (compared.firstValue || compared.secondValue) {
      const auto inShort = [](const std::optional<Value>& value) { return value ? value->words : "-"; };
      words += ':' + compared.parameter + '=' + inShort(compared.firstValue) + '|' + inShort(compared.secondValue);
    }
    return words;
  }

  std::map<std::string, Types::ActivityVersion> versions;
  long long now = 1'700'000'000'000'000;
};

TEST_F(Diff, FindsWhatDiffersAndNothingElse) {
  ComparisonRules tolerant = Untimed();
  tolerant.tolerances["x"] = {0.1, 0};
  tolerant.otherwise = {0, 0.01};
  tolerant.ignored = {"Noise", "File"};
  static const struct {
    const char *first, *second, *differences;
  } rows[] = {
      // values
      {"{E:x=1,y=true,z=nan}", "{E:x='1.0,y=1,z=nan}", ""},
      {"{E:x=1,y='a,z=nan}", "{E:x=2,y='b,z=0}", "run/E1:x=1|2 run/E1:y=a|b run/E1:z=NaN|0"},
      {"{E:x=1,x=2,y=3}", "{E:y=3,x=1,x=4}", "run/E1:x=2|4"},
      {"{E:x=1}", "{E:y=1}", "run/E1:x=1|- run/E1:y=-|1"},
      // executions: left out, repeated, in another order
      {"a{} b{} c{}", "a{} c{}", "+b"},
      {"a{} c{}", "a{} b{E} c{}", "-b"},
      {"h{M:x=1} h{M:x=2} h{M:x=2.01} h{M:x=3} h{M:x=4} h{M:x=5}", "h{M:x=1} h{M:x=2} h{M:x=3} h{M:x=4} h{M:x=5}",
       "+h(3)"},
      {"h{M:x=1} h!{M:x=2} h{M:x=2} h{M:x=3}", "h{M:x=1} h{M:x=2} h{M:x=3}", "+h(2)"},
      {"h{M:x=1.002} h{M:x=1.001} b{}", "h{M:x=1} b{}", "+h(2) h/M1:x=1.002|1"},
      {"a{M:x=1} b{M:x=2} c{}", "b{M:x=2} c{} a{M:x=3}", "~a a/M1:x=1|3"},
      {"f{} h{M:x=1} f{} h{M:x=2}", "f{} h{M:x=1} h{M:x=2}", "+f(2)"},
      // nodes with numbers that always differ
      {"25-1{M:x=1} 25-2{M:x=2} 25-3{M:x=3}", "26-1{M:x=1} 26-3{M:x=3}", "+25-2"},
      {"25:11{M:x=1} 12:26{M:x=2}", "26:12{M:x=1} 11:25{M:x=3}", "12:26/M1:x=2|3"},
      {"grid3{M:x=1}", "grid4{M:x=2}", "grid3/M1:x=1|2"},
      {"left{M:x=1}", "right{M:x=2}", "left/M1:x=1|2"},
      {"a{} left{}", "a{} right{}", "+left -right"},
      {"a@1{}", "a@2{}", "a:=Hole 1|Hole 2"},
      {"a@1{}", "a{}", "+a -a"},
      {"a!{}", "a{}", "a:=4|14"},
      // events: left out, repeated, in another order
      {"{A:x=-3;A:x=0;A:x=3;A:x=6}", "{A:x=-3;A:x=3.1;A:x=6}", "+run/A2 run/A3:x=3|3.1"},
      {"{A:x=-3;A:x=3}", "{A:x=-3;A:x=0;A:x=3}", "-run/A2"},
      {"{A;F;A;F;B}", "{A;F;A;B}", "+run/F2"},
      {"{A:x=1;B:x=2}", "{B:x=2;A:x=4}", "~run/A1 run/A1:x=1|4"},
      {"{A:x=1;A:x=2}", "{A:x=2;A:x=3}", "run/A1:x=1|2 run/A2:x=2|3"},
  };
  for (const auto& [first, second, differences] : rows) {
    EXPECT_EQ(Compare(first, second), differences) << first << " against " << second;
  }
  EXPECT_EQ(Compare("{E:x=1.5,y=101,z=102,File='a;Noise:q=1}", "{E:x=1.4,y=100,z=100,File='b}", tolerant),
            "run/E1:z=102|100");
  EXPECT_EQ(Compare("{E:x=0.3,y=inf}", "{E:x=0.1,y=1}", tolerant), "run/E1:x=0.3|0.1 run/E1:y=inf|1");
}

TEST_F(Diff, FindsTheEventThatWasRepeatedAmongMoreThanItKeepsInMemory) {
  std::vector<int> one(1500);  // several windows
  std::iota(one.begin(), one.end(), 1);
  std::vector<int> other = one;
  one.insert(one.begin() + 300, 300);
  other.erase(other.begin() + 700, other.begin() + 702);
  const std::string first = RecordSeries(one);
  EXPECT_EQ(ReplaceMatches(CompareRuns(first, RecordSeries(other)), "run/A\\d+:noise=\\S+ ?", ""),
            "+run/A301 +run/A702 +run/A703 ");
  const std::string cut = CompareRuns(first, RecordSeries({1, 2}));
  EXPECT_EQ(Split(cut, '+').size(), 1500U) << cut;
}

TEST_F(Diff, SaysWhereTwoRunsFirstPart) {
  static const struct {
    const char *first, *second, *parting;
  } rows[] = {
      {"{E:f='a,x=1;E:f='b,x=1;E:f='c,x=1}", "{E:f='d,x=1;E:f='e,x=1;E:f='f,x=2}", "run/E3:x=1|2"},
      {"{E:f='a;E:f='b;E:f='c}", "{E:f='d;E:f='e;E:f='f}", "run/E1:f=a|d"},
      {"{E:x=1;E:x=1;E:x=1}", "{E:x=2;E:x=2;E:x=2}", "run/E1:x=1|2"},
      {"a{E:x=1} c!{E:x=1}", "a{E:x=1} b{} c{E:x=2}", "-b"},
      {"a!{} b{}", "a{} b{}", "a:=4|14"},
      {"a!{A} b{A:x=1}", "a{A;B} b{A:x=2}", "-a/B1"},
      {"a{}", "a{}", ""},
  };
  for (const auto& [first, second, expected] : rows) {
    Compare(first, second);
    EXPECT_EQ(parting, expected) << first << " against " << second;
  }
}

TEST_F(Diff, IsToldByTheVerb) {
  // A program for Windows does not see the lock of this host on a file.
  const std::string ofHost = underWine ? "(running|UNFINISHED)" : "running";
  const std::string good = Record("a{E:x=1,File='p.mrc} b@1{}"), stopped = Record("a!{}");
  Use("elsewhere");
  Record("a{E:x=1.05,File='p.mrc} b@1{}");
  Use(".");
  const std::string bad = Record("a{E:x=1.1,File='q.mrc} b@2{}");
  const struct {
    std::string arguments;
    int code;
    std::string shown;  // a pattern
  } rows[] = {
      {bad + ' ' + bad, 0, "[^]*Nothing differs.\n"},
      {bad, 1,
       "compared with run " + good +
           "[^\n]*the newest finished run of activity '' on instrument 'Veldmar 3'[^]*"
           "They first part at [^\n]*, 0:00:0[^\n]*:\n  run > a > E 1\n  File: q.mrc in [^]*\n"
           "E File  all 1    a > E 1  q.mrc +p.mrc\nE x     all 1    a > E 1 +1.1 +1 +\\+0.1\n[^]*"
           "  Hole 2 in " +
           bad.substr(0, 8) + ", Hole 1 in " + good.substr(0, 8) + ": 1 execution\n"},
      {bad + " --with elsewhere", 1, "compared with [^]*1.1 +1.05 +\\+0.05\n[^]*"},
      {bad + " --json --tolerance x=10% --ignore File", 1,
       "[^]*\"differences\":\\[\n\\{\"kind\":\"version\"[^\n]*\"value\":\"Hole 2\",\"against\":\"Hole 1\"\\}\\][^]*"
       "\"parting\":null,\"same\":false\\}\n"},
      {bad + ' ' + stopped, 1,
       "[^]*\nOnly in " + bad.substr(0, 8) + "\n  b\n  a > E 1\n[^]*state +1 of 2 +a +done +" + ofHost + "[^]*"},
      {bad + ' ' + bad + " --all", 0, "[^]*E x +same in all 1\n[^]*"},
      {good, 1, "there is no finished run of activity '' on instrument 'Veldmar 3' that started before [^]*"},
      {"nothing", 1, "no run matches 'nothing'[^]*"},
      {good + " --tolerance x=a", 2, "[^]*tolerance 'x=a': expected NAME=0.1[^]*"},
      {good + " --slower 0.5", 2, "[^]*--slower '0.5': expected a number of at least 1[^]*"},
  };
  for (const auto& [arguments, code, shown] : rows) {
    EXPECT_EQ(Tool("diff " + arguments), code) << arguments << ": " << said;
    EXPECT_TRUE(Matches(said, shown)) << arguments << ":\n" << said;
  }
}

TEST_F(Diff, IsInTheDataOfAPage) {
  NEEDS_PAGE();
  const std::string other = Record("a{E:x=1;F} c{}"), own = Record("a{E:x=1.5} b{} c{G}");
  const auto keys = [this](const std::string& question) {
    return Query(*TestStore(folder / "." / "ts.db").Open(), question);
  };
  ASSERT_EQ(Tool("report " + own + " --against " + other + " --tolerance x=0.1,2% --ignore G -o page.html"), 0) << said;
  const std::string page = ContentOf(folder / "page.html");
  const auto keyOf = [&](const std::string& run, const std::string& node) {
    return std::stoll(
        keys("SELECT e.execution_id FROM executions e JOIN executions r ON r.execution_id = e.root_id "
             "WHERE r.guid = '" +
             run + "' AND e.node = '" + node + "'"));
  };
  const auto column = [&](const std::string& run) {
    const long long root = keyOf(run, "run"), a = keyOf(run, "a"), c = keyOf(run, "c");
    return '[' + std::to_string(root) + ',' + std::to_string(a - root) + ',' + std::to_string(c - a) + ']';
  };
  for (const std::string& part :
       {"\"against\":{\"run\":\"" + other + "\",\"start\":\"20", "\"recorded\":2,\"slices\":null"s,
        "\"pairs\":[{\"own\":" + column(own) + ",\"other\":" + column(other) + "}],\"event_pairs\":[{\"own\":["s,
        "\"rules\":{\"ignored\":[\"G\"],\"tolerances\":[{\"parameter\":\"x\",\"absolute\":0.1,\"relative\":0}],"
        "\"otherwise\":{\"absolute\":0,\"relative\":0.02}},\"parting\":{\"kind\":\"parameter\",\"execution\":"s +
            std::to_string(keyOf(own, "a")) + ",\"other_execution\":" + std::to_string(keyOf(other, "a")) +
            ",\"event\":",
        ",\"parameter\":\"x\",\"at\":2000000},\"lines\":[]"s}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
}

}  // namespace
