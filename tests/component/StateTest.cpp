// The state of the process: what operations leave in it, and what they find there that no export can put.

#include "InternalsTest.h"
#include "Memory.h"
#include "bringup/TsSession.h"
#include "instrument/InstrumentConfiguration.h"
#include "support/HostObjects.h"

#include <VeloraTsLogging/ITsLoggingConfigurator.h>

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

  TsLogging logging;
};

TEST_F(State, OfAnEventIsCopiedBeforeItsExecutionIsFetched) {
  At("TSAL GetActivityExecution", [] {
    pendingInstrumentEvents["before"].Name = "changed";
    instrumentConfigResult.ConfigurationId = TolvaServices::Types::Tsid("meanwhile");
  });
  logging.SaveInstrumentEvent("before", "g");
  EXPECT_NE(Journal().find("TSAL SaveEvent('before' at no time [], 'meanwhile', 'g'"), std::string::npos);
}

TEST_F(State, OfEventsStaysAsItWasWithoutTsAndOnlyTraceLinesAreWritten) {
  const std::string add = Scope("AddInstrumentEventParameter");
  tsSupported = false;
  for (const char* const name : {"before", "new"}) {
    logging.CreateInstrumentEvent(name);
    logging.AddInstrumentEventParameter(name, "p", true);
    logging.AddInstrumentEventParameter(name, "p", 1.0);
    logging.AddInstrumentEventParameter(name, "p", 1);
    logging.AddInstrumentEventParameter(name, "p", std::string());
    logging.SaveInstrumentEvent(name, "g");
    EXPECT_EQ(Journal(), Scope("CreateInstrumentEvent") + add + add + add + add + Scope("SaveInstrumentEvent"));
    ASSERT_EQ(pendingInstrumentEvents.size(), 1U);
    EXPECT_TRUE(pendingInstrumentEvents["before"].Parameters.empty());
  }
}

TEST_F(State, OfEventsIsForgottenAtASessionsStartOnceTheGatewayIsReleased) {
  const std::function<void()> starts[] = {[] { StartTsSession(); }, [] { StartTsSession("a", "b", "c"); }};
  for (const auto& start : starts) {
    pendingInstrumentEvents["before"];
    std::size_t pendingThen = 0;
    currentGateway = std::make_shared<HostGateway>("gateway", [&] { pendingThen = pendingInstrumentEvents.size(); });
    At("TSAL BeginSession", [] { currentGateway = nullptr; });
    start();
    EXPECT_EQ(pendingThen, 1U);
    EXPECT_TRUE(pendingInstrumentEvents.empty());
  }
}

TEST_F(State, OfActivityVersionsIsWhatTheLastRegistrationAnsweredAndTellsLettersApart) {
  Fakes::TheScene().answers.versions = {"Section"};
  TsLogging::RegisterActivitiesFile("first");
  for (const auto& [name, version] : {std::pair{"Section", "'version of Section'"}, {"section", "''"}}) {
    Journal();
    logging.CreateActivityExecution(name, "n", "d");
    EXPECT_NE(Journal().find(std::string("TSAL SaveActivityExecution('' version ") + version + " status"),
              std::string::npos);
  }
  Fakes::TheScene().answers.versions = {};
  TsLogging::RegisterActivitiesFile("second");
  EXPECT_TRUE(activityVersions.empty());
}

TEST_F(State, OfTheInstrumentsConfigurationIsTheWholeAnswer) {
  SaveInstrumentConfiguration("text");
  EXPECT_EQ(instrumentConfigResult.Text, "text of the result");
  EXPECT_EQ(instrumentConfigResult.ConfigurationId.GetGuid(), "configuration");
  EXPECT_EQ(instrumentConfigResult.SessionId.GetGuid(), "session");
  EXPECT_EQ(instrumentConfigResult.Time.Microseconds(), 1);
  EXPECT_EQ(instrumentConfigResult.Reference.get(), &Fakes::TheScene());
}

TEST_F(State, OfFactoryAndConfiguratorTakesOneAllocationEach) {
  for (const auto& make : {std::function<void()>(GetFactory), {Unmanaged::GetTsLoggingConfigurator}}) {
    Memory::RefuseFrom(1, false);
    EXPECT_NO_THROW(make());
    EXPECT_FALSE(Memory::RefuseNoMore());
  }
}

TEST_F(State, OfTheProcessParentIsReadAtTheStart) {
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
  At("TSAL IsTsServicePresent", [] { parentActivityExecGuid = "too late"; });
  parentActivityExecGuid = "P";
  Fakes::TheScene().answers.servicePresent = false;
  EXPECT_EQ(TsLogging::SetParentActivityExec("n", "a", "b", "c"), "P");
  tsSupported = Fakes::TheScene().answers.servicePresent = true;
  logging.CreateActivityExecution("given", "before", "n", "d");
  EXPECT_NE(Journal().find("kind 0 parent 'given'"), std::string::npos);
  EXPECT_EQ(logging.CreateActivityExecution("", "before", "n", "d"), "");
}

TEST_F(State, HasTheComputersNameUpToAZeroByteOrNothing) {
  const std::string longest(128, 'h');
  for (const auto& [name, sent] : {std::pair<std::string, std::string>{"", ""},
                                   {{"a\0b", 3}, "a"},
                                   {longest, longest},
                                   {longest + "h", longest}}) {
    Fakes::TheScene().hook = [&name = name](const std::string& entry) {  // asked for between these two
      systemCalls.hostName = entry == "KivAccess CreateInstrumentAccess" ? name : "at another time";
    };
    SaveInstrumentConfiguration("text");
    EXPECT_NE(Journal().find("('text', '', 'Brantor Scientific', '" + sent + "', "), std::string::npos);
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
