// The state of the process: what operations leave in it, and what they find there that no export can put.

#include "InternalsTest.h"
#include "instrument/InstrumentConfiguration.h"
#include "support/ScratchFolder.h"

namespace Quor::Velora::Infra::TsLogging {
namespace {

/// Supported, with one pending event, one registered version and one configuration, from before.
class State : public InternalsTest {
 protected:
  State() {
    tsSupported = true;
    pendingInstrumentEvents["before"].Name = "before";
    activityVersions["before"];
    instrumentConfigResult.ConfigurationId = TolvaServices::Types::Tsid("before");
  }

  static std::string KeysOf(const auto& map) {
    std::string keys;
    for (const auto& entry : map) {
      keys += entry.first + ' ';
    }
    return keys;
  }

  TsLogging logging;
};

TEST_F(State, AfterAFailureInBringUpHoldsWhatWasDoneBefore) {
  const ScratchFolder folder;
  systemCalls.moduleFile = (folder.Write("TSAL.config", "").parent_path() / "lib.so").wstring();
  folder.Write("a", "");
  struct Row {
    const char *failing, *pending, *versions, *configuration;
  };
  const Row rows[] = {
      {"TSAL BeginSession", "before ", "before ", "before"},
      {"TSAL RegisterAndGet", "", "before ", "before"},
      {"TSAL ReadAllText", "", "Section TiltSeries ", "before"},
      {"TSAL SaveInstrument", "", "Section TiltSeries ", "before"},
      {"", "", "Section TiltSeries ", "configuration"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.failing);
    const bool raised = RaisesAt(row.failing, [] { TsLogging::CreateTsLoggingSession("i", "a"); });
    EXPECT_EQ(raised, *row.failing != '\0');
    EXPECT_EQ(KeysOf(pendingInstrumentEvents), row.pending);
    EXPECT_EQ(KeysOf(activityVersions), row.versions);
    EXPECT_EQ(instrumentConfigResult.ConfigurationId.GetGuid(), row.configuration);
  }
}

TEST_F(State, HoldsAnUnknownVersionOnceItWasLookedUpUntilTheNextRegistration) {
  const auto create = [&](const char* version) { logging.CreateActivityExecution(version, "n", "d"); };
  const auto createUnder = [&](const char* parent) { logging.CreateActivityExecution(parent, "x", "n", "d"); };
  const auto registerFile = [] { TsLogging::RegisterActivitiesFile("f"); };
  struct Row {
    const char* failing;
    std::function<void()> act;
    const char* versions;
  };
  const Row rows[] = {
      {"", [&] { createUnder(""); }, "before "},
      {"TSAL IsTsServicePresent", [&] { create("x"); }, "before "},
      {"TSAL GetActivityExecution", [&] { createUnder("p"); }, "before "},
      {"TSAL SaveActivityExecution('' version '' ", [&] { createUnder("p"); }, "before x "},
      {"", [&] { create("X"); }, "X before x "},
      {"TSAL Register", registerFile, "X before x "},
      {"", registerFile, "Section TiltSeries "},
      {"", [&] { create("x"); }, "Section TiltSeries x "},
      {"", registerFile, "Section TiltSeries "},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(RaisesAt(row.failing, row.act), *row.failing != '\0') << "row " << &row - rows;
    EXPECT_EQ(KeysOf(activityVersions), row.versions) << "row " << &row - rows;
  }
}

TEST_F(State, OfAnEventIsCopiedBeforeItsExecutionIsFetchedAndStays) {
  At("TSAL GetActivityExecution", [] { pendingInstrumentEvents["before"].Name = "changed"; });
  logging.SaveInstrumentEvent("before", "g");
  EXPECT_NE(Journal().find("TSAL SaveEvent('before' at no time [], 'before', 'g'"), std::string::npos);

  EXPECT_TRUE(RaisesAt("TSAL GetActivityExecution", [&] { logging.SaveInstrumentEvent("new", "g"); }));
  EXPECT_EQ(KeysOf(pendingInstrumentEvents), "before new ");
}

TEST_F(State, OfTheProcessParentIsReadAtTheStartOfACreationWithoutOne) {
  const std::string fetch = "TSAL GetActivityExecution('P', true, null)\n";
  struct Row {
    const char *processParent, *description;
    std::string fetch, kindAndParent;
  };
  const Row rows[] = {{"", "described", "", "kind 5 parent null"},
                      {"P", "described", fetch, "kind 0 parent 'P'"},
                      {"P", "", fetch, "kind 0 parent null"}};
  for (const Row& row : rows) {
    parentActivityExecGuid = row.processParent;
    Fakes::TheScene().answers.fetchedDescription = row.description;
    At("TSAL IsTsServicePresent", [] { parentActivityExecGuid = "too late"; });
    EXPECT_EQ(logging.CreateActivityExecution("before", "n", "d"), "new guid");
    EXPECT_EQ(Journal(), Scope("CreateActivityExecution", "TSAL IsTsServicePresent()", row.fetch,
                               "TSAL SaveActivityExecution('' version '' status 4 now node 'n' description 'd' " +
                                   row.kindAndParent + ", Empty)",
                               "info Create activity execution. regActivityVersionName: before, node: n, "
                               "description: d, new guid: new guid"));
  }
  logging.CreateActivityExecution("given", "before", "n", "d");
  EXPECT_NE(Journal().find("kind 0 parent 'given'"), std::string::npos);
  EXPECT_EQ(logging.CreateActivityExecution("", "before", "n", "d"), "");
}

TEST_F(State, HasTheComputersNameUpToAZeroByteOrNothing) {
  const std::string longest(128, 'h');
  for (const auto& [name, sent] :
       {std::pair<std::string, std::string>{"", ""}, {{"a\0b", 3}, "a"}, {longest, longest}}) {
    systemCalls.hostName = name;
    SaveInstrumentConfiguration("text");
    EXPECT_NE(Journal().find("('text', '', 'Brantor Scientific', '" + sent + "', "), std::string::npos);
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
