// Every operation with a fault at each place of its way in turn, a call that raises or memory that runs out: what comes
// out, which lines stand in the log then, and the state that is left.

#include "Disturbance.h"
#include "InternalsTest.h"
#include "gateway/TolvaServicesClass.h"
#include "support/ScratchFolder.h"

#include <VeloraTsLogging/ITsLoggingConfigurator.h>

#include <algorithm>

namespace Quor::Velora::Infra::TsLogging {
namespace {

/// A value for each item of the process's state.
using State = std::map<std::string, std::string>;

/// What follows a line of the journal, or "done" for a return. "new" is made only where there is none.
struct Change {
  std::string line, item, value;
};
using Changes = std::vector<Change>;

struct Operation {
  std::string name;
  std::function<void()> operate;
  Changes changes = {};                   // beyond those of EveryFault::ChangesOf
  std::string files = "here";             // where the settings lie: here, root, nowhere
  std::function<void()> arrange = [] {};  // what differs from the state before every operation
};

std::string Entry(const std::string& operation) {
  return "info >>Quor::Velora::Infra::TsLogging::TsLogging::" + operation;
}

bool IsOfTheCheck(const std::string& exit) { return exit.ends_with("::CheckTsServiceAvailability"); }

/// Whether a fault ends in a check: one is open, and its presence question has been answered.
bool EndsInACheck(const Outcome& outcome, const std::vector<std::string>& exits) {
  const std::string presence = "TSAL IsTsServicePresent()";
  if (outcome.call == presence || std::none_of(exits.begin(), exits.end(), IsOfTheCheck)) {
    return false;
  }
  const std::size_t check = outcome.before.rfind(Entry("CheckTsServiceAvailability"));
  return outcome.before.find(presence, check) != std::string::npos;
}

/// The states that a fault may leave: one, unless memory ran out somewhere among the changes that follow a line.
std::vector<State> StatesLeft(State state, const Changes& changes, const Outcome& outcome, bool inCheck) {
  std::vector<std::string> lines = LinesOf(outcome.written);
  if (!outcome.raised && !inCheck) {
    lines.push_back("done");
  }
  const std::size_t faultAt = LinesOf(outcome.before).size();
  std::vector<State> left = {state};
  for (std::size_t at = 0; at < lines.size(); ++at) {
    if (inCheck && at == faultAt) {
      state["supported"] = "no";
      left = {state};
    }
    const bool isTheFault = at + 1 == faultAt && lines[at] == outcome.call;
    if (isTheFault || StartsWith(lines[at], "info <<")) {
      continue;
    }
    left = {state};
    for (const Change& change : changes) {
      if (StartsWith(lines[at], change.line) && (change.value != "new" || state[change.item] == "none")) {
        state[change.item] = change.value;
        left.push_back(state);
      }
    }
  }
  const bool ranOutAndPassed = outcome.raised && outcome.call.empty();
  return ranOutAndPassed ? left : std::vector{state};
}

class EveryFault : public InternalsTest {
 protected:
  EveryFault() {
    for (const char* place : {"here", "root", "nowhere"}) {
      create_directory(folder / place);
    }
    for (const char* file : {"TSAL.config", "activities.xml", "own.xml"}) {
      folder.Write(std::string("here/") + file, "");
      folder.Write(std::string("root/") + file, "");
    }
  }
  ~EveryFault() override {
    Reset();
    std::filesystem::current_path("/");
  }

  void Arrange(const Operation& operation) {
    Reset();
    std::filesystem::current_path(folder / (operation.files == "here" ? "here" : "nowhere"));
    systemCalls.moduleFile = (folder / (operation.files == "root" ? "root" : "nowhere") / "lib.so").wstring();
    Fakes::Answers& answers = Fakes::TheScene().answers;
    answers.versions = {"AutoFunction", "registered"};
    answers.newGuid = answers.configurationGuid = guid;

    instanceSlot = logging = std::make_shared<TsLogging>();
    currentGateway = gateway = std::make_shared<TolvaServicesClass>();
    gateway->SetTsalPath("before");
    gateway->RegisterAndGetActivityVersions("before");
    factorySlot = factory = std::make_shared<IFactory>();
    configurator = former = Unmanaged::GetTsLoggingConfigurator();
    givenLogging = std::make_shared<TsLogging>();
    givenGateway = std::make_shared<TolvaServicesClass>();
    givenFactory = std::make_shared<IFactory>();
    tsSupported = true;
    logging->AddInstrumentEventParameter("before", "p", 1);
    activityVersions = {{"AutoFunction", {}}, {"before", {}}};
    instrumentConfigResult.ConfigurationId = TolvaServices::Types::Tsid("before");
    parentActivityExecGuid = "before";
    operation.arrange();
    Journal();
  }

  static std::string Name(const auto& object, const auto& before, const auto& given) {
    if (object == nullptr) {
      return "none";
    }
    return object == before ? "before" : object == given ? "given" : "new";
  }

  /// Whether the gateway remembers "before" from a call: it does not hand that to TSAL then.
  static std::string Remembered(const std::function<void()>& callWithBefore) {
    return currentGateway && !RaisesAt("TSAL", callWithBefore) ? "before" : "another";
  }

  State StateNow() const {
    State state = {{"instance", Name(instanceSlot, logging, givenLogging)},
                   {"gateway", Name(currentGateway, gateway, givenGateway)},
                   {"factory", Name(factorySlot.lock(), factory, givenFactory)},
                   {"configurator", configurator == former ? "before" : "another"},
                   {"supported", tsSupported ? "yes" : "no"},
                   {"parent", parentActivityExecGuid},
                   {"configuration", instrumentConfigResult.ConfigurationId.GetGuid()},
                   {"pending", ""},
                   {"versions", ""},
                   {"path", Remembered([] { currentGateway->SetTsalPath("before"); })},
                   {"registered", Remembered([] { currentGateway->RegisterAndGetActivityVersions("before"); })}};
    for (const auto& [name, event] : pendingInstrumentEvents) {
      state["pending"] += name + '(' + event.Name + ' ' + std::to_string(event.Parameters.size()) + ") ";
    }
    for (const auto& entry : activityVersions) {
      state["versions"] += entry.first + ' ';
    }
    Fakes::TheScene().hook = nullptr;
    Journal();
    return state;
  }

  Changes ChangesOf(const Operation& operation) const {
    const Fakes::Answers& answers = Fakes::TheScene().answers;
    Changes changes = {
        {Entry("CheckTsServiceAvailability"), "gateway", "new"},
        {Entry("GetInstance"), "instance", "new"},
        {"info Set Parent Activity execution", "instance", "new"},
        {"TSAL SetTsalPath", "path", "another"},
        {"TSAL IsConnectable", "supported", answers.connectable ? "yes" : "no"},
        {"TSAL BeginSession", "pending", ""},
        {"TSAL RegisterAndGetActivityVersions", "registered", "another"},
        {"TSAL RegisterAndGetActivityVersions", "versions", "AutoFunction registered "},
        {"TSAL SaveInstrumentConfigWithResult", "configuration", guid},
    };
    if (!answers.servicePresent) {
      changes.push_back({"TSAL IsTsServicePresent", "supported", "no"});
    }
    changes.insert(changes.end(), operation.changes.begin(), operation.changes.end());
    return changes;
  }

  /// False when the operation has no such place.
  bool Try(const Operation& operation, const Fault& fault, const std::string& undisturbed) {
    Arrange(operation);
    const Changes changes = ChangesOf(operation);
    const State before = StateNow();
    const Outcome outcome = Disturb(operation.operate, fault);
    const State after = StateNow();
    SCOPED_TRACE(operation.name + ", fault " + std::to_string(fault.kind) + " at " + std::to_string(fault.at) + ' ' +
                 outcome.call + ", after:\n" + outcome.before);
    std::vector<std::string> exits = MissingExits(outcome.before);
    if (StartsWith(outcome.call, "info >>")) {
      exits.erase(exits.begin());  // it did not open
    }
    const bool isGivenUp = StartsWith(outcome.call, "info <<");
    const bool inCheck = !isGivenUp && EndsInACheck(outcome, exits);
    if (!outcome.faulty || isGivenUp) {
      EXPECT_FALSE(outcome.raised);
      EXPECT_EQ(outcome.written, undisturbed);
    } else {
      ExpectExits(outcome, exits, inCheck);
      EXPECT_EQ(outcome.raised, !inCheck || fault.kind == Fault::MemoryStaysOut);
    }
    const std::vector<State> left = StatesLeft(before, changes, outcome, inCheck);
    EXPECT_TRUE(std::find(left.begin(), left.end(), after) != left.end())
        << testing::PrintToString(after) << "\ninstead of one of\n"
        << testing::PrintToString(left);
    return outcome.faulty;
  }

  void TryEveryPlaceOf(const Operation& operation, Fault::Kind kind) {
    Arrange(operation);
    const std::string undisturbed = Disturb(operation.operate, {Fault::CallRaises, -1}).written;
    EXPECT_FALSE(Try(operation, {Fault::CallRaises, -1}, undisturbed));
    int places = 0;
    while (Try(operation, {kind, places}, undisturbed)) {
      ++places;
    }
    EXPECT_TRUE(places > 0 || (kind == Fault::CallRaises && undisturbed.empty())) << operation.name;
  }

  /// What is raised in a check ends there, and TS is not used; otherwise the exit lines alone follow.
  static void ExpectExits(const Outcome& outcome, const std::vector<std::string>& exits, bool inCheck) {
    std::string lines = outcome.before;
    for (const std::string& exit : exits) {
      lines += exit + '\n';
      if (inCheck && IsOfTheCheck(exit)) {
        break;
      }
    }
    if (inCheck) {
      EXPECT_EQ(outcome.written.substr(0, lines.size()), lines);
      EXPECT_EQ(outcome.written.find("TSAL BeginSession", lines.size()), std::string::npos);
    } else {
      EXPECT_EQ(outcome.written, lines);
    }
  }

  // Longer than what a text keeps without an allocation.
  const std::string node = std::string(40, 'n'), description = std::string(40, 'd'), version = std::string(40, 'v'),
                    parameter = std::string(40, 'p'), guid = std::string(40, 'g');
  const ScratchFolder folder;
  std::shared_ptr<TsLogging> logging, givenLogging;
  std::shared_ptr<TolvaServicesClass> gateway, givenGateway;
  std::shared_ptr<IFactory> factory, givenFactory;
  std::shared_ptr<Unmanaged::ITsLoggingConfigurator> configurator, former;
};

using Operations = std::vector<Operation>;

class EveryFaultOf : public EveryFault, public testing::WithParamInterface<Fault::Kind> {
 protected:
  void SetUp() override {
    if (GetParam() != Fault::CallRaises && !Memory::isAllInReach) {
      GTEST_SKIP() << "the standard library takes memory by itself here";
    }
  }

  void TryEach(const Operations& operations) {
    for (const Operation& operation : operations) {
      TryEveryPlaceOf(operation, GetParam());
    }
  }

  Changes LookedUpAfter(const char* line) const { return {{line, "versions", "AutoFunction before " + version + ' '}}; }

  const std::string &n = node, &d = description, &v = version, &p = parameter, &g = guid, none;
  const Change newFactory = {"done", "factory", "given"};
};

TEST_P(EveryFaultOf, BringUpLeavesTheStateThatWasReachedAndPassesAfterTheExitLines) {
  const std::string own = "own.xml";
  const auto create = [&] { IFactory::CreateTsLogging(n); };
  const auto createOwn = [&] { IFactory::CreateTsLogging(n, own); };
  const auto set = [&] { configurator->SetParentActivityExec(n, p, v, d); };
  const auto setOwn = [&] { configurator->SetParentActivityExec(n, p, v, d, own); };

  const auto noObject = [] { instanceSlot = nullptr; };
  const auto bare = [] { instanceSlot = nullptr, currentGateway = nullptr, tsSupported = false; };
  const auto noTs = [] { instanceSlot = nullptr, Fakes::TheScene().answers.servicePresent = false; };
  const auto unreachable = [] { Fakes::TheScene().answers.connectable = false; };

  const Changes parent = {{"done", "parent", g}};
  TryEach({
      {"CreateTsLogging", create, {}, "here", bare},
      {"CreateTsLogging, own file", createOwn, {}, "root", noObject},
      {"CreateTsLogging, no settings", createOwn, {}, "nowhere", bare},
      {"CreateTsLogging, no TS", create, {}, "here", noTs},
      {"CreateTsLogging, TS unreachable", create, {}, "root", unreachable},
      {"SetParentActivityExec", set, parent, "here", bare},
      {"SetParentActivityExec, own file", setOwn, parent, "root", noObject},
      {"SetParentActivityExec, no settings", setOwn, parent, "nowhere"},
      {"SetParentActivityExec, no TS", set, {}, "here", noTs},
  });
}

TEST_P(EveryFaultOf, TheSlotsLeavesTheStateThatWasReachedAndPassesAfterTheExitLines) {
  const Changes object = {{Entry("SetInstance"), "instance", "given"}, newFactory};
  const std::string setGateway = Entry("SetTolvaServicesInstance");
  const Changes services = {{setGateway, "gateway", "given"},
                            {setGateway, "path", "another"},
                            {setGateway, "registered", "another"},
                            newFactory};
  const auto noFactory = [this] { factory = nullptr; };
  TryEach({
      {"SetFactory, logging", [&] { SetFactory(givenFactory, givenLogging); }, object},
      {"SetFactory, gateway", [&] { SetFactory(givenFactory, givenGateway); }, services},
      {"GetFactory", [&] { givenFactory = GetFactory(); }, {newFactory}, "here", noFactory},
      {"GetConfigurator", [&] { GetTsLogingConfigurator(configurator); }, {{"done", "configurator", "another"}}},
  });
}

TEST_P(EveryFaultOf, TheLoggingObjectLeavesTheStateThatWasReachedAndPassesAfterTheExitLines) {
  const auto noParent = [] { parentActivityExecGuid.clear(); };
  const auto fetched = LookedUpAfter("TSAL GetActivityExecution");
  const std::string one = "before( 1) ";
  const Changes added = {{"info Add", "pending", one + n + "( 0) "}, {"done", "pending", one + n + "( 1) "}};
  TryEach({
      {"slot 1", [&] { static_cast<void>(logging->CreateActivityExecution(g, v, n, d)); }, fetched},
      {"slot 1, no parent", [&] { static_cast<void>(logging->CreateActivityExecution(none, v, n, d)); }},
      {"slot 2", [&] { static_cast<void>(logging->CreateActivityExecution(v, n, d)); }, fetched},
      {"slot 2, no parent", [&] { static_cast<void>(logging->CreateActivityExecution(v, n, d)); },
       LookedUpAfter("TSAL IsTsServicePresent"), "here", noParent},
      {"slot 3", [&] { logging->UpdateActivityExecution(g); }},
      {"slot 4", [&] { logging->CreateInstrumentEvent(n); }, {{"done", "pending", one + n + '(' + n + " 0) "}}},
      {"slot 4, again",
       [&] { logging->CreateInstrumentEvent("before"); },
       {{"info Create", "pending", ""}, {"done", "pending", "before(before 0) "}}},
      {"slot 5", [&] { logging->SaveInstrumentEvent(n, g); }, {{"info Save", "pending", one + n + "( 0) "}}},
      {"slot 5, no execution", [&] { logging->SaveInstrumentEvent("before", none); }},
      {"slot 6", [&] { logging->AddInstrumentEventParameter(n, p, true); }, added},
      {"slot 7", [&] { logging->AddInstrumentEventParameter(n, p, 0.5); }, added},
      {"slot 8", [&] { logging->AddInstrumentEventParameter(n, p, 1); }, added},
      {"slot 9", [&] { logging->AddInstrumentEventParameter(n, p, d); }, added},
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryFaultOf,
                         testing::Values(Fault::CallRaises, Fault::MemoryRunsOutOnce, Fault::MemoryStaysOut));

TEST_F(EveryFault, OfMemoryForWhatAnEventTakesUpLeavesTheEventsAsTheyWere) {
  Arrange({});
  pendingInstrumentEvents[node];
  const State before = StateNow();
  struct Row {
    const char* lineBeforeTheWork;
    int allocation;  // the last one before something changes
    std::function<void()> operate;
  };
  const Row rows[] = {{"info Create", 0, [&] { logging->CreateInstrumentEvent(node); }},
                      {"info Add", 1, [&] { logging->AddInstrumentEventParameter("new", "p", 1); }}};
  for (const Row& row : rows) {
    At(row.lineBeforeTheWork, [&] { Memory::RefuseFrom(row.allocation, false); });
    EXPECT_THROW(row.operate(), std::bad_alloc);
    EXPECT_EQ(StateNow(), before) << row.lineBeforeTheWork;
  }
}

TEST_F(EveryFault, OfTheFileSystemPassesBehindTheCheck) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "every name has an answer here";
  }
  const std::string unanswerable(300, 'x');  // no file system has names of this length: to ask for one raises
  const std::function<void()> operations[] = {
      [&] { IFactory::CreateTsLogging("i", unanswerable); },
      [&] { configurator->SetParentActivityExec("n", "a", "b", "c", unanswerable); }};
  for (const auto& operate : operations) {
    Arrange({"", {}, {}, "nowhere"});
    const State before = StateNow();
    At("TSAL IsConnectable", [] { std::ofstream("TSAL.config"); });
    EXPECT_THROW(operate(), std::filesystem::filesystem_error);
    EXPECT_TRUE(MissingExits(Fakes::TheScene().journal).empty());
    EXPECT_EQ(StateNow(), before);
    std::filesystem::remove("TSAL.config");
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
