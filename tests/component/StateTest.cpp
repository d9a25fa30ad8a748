// The state of the process: what operations leave in it, and what they find there that no export can put.

#include "InternalsTest.h"
#include "instrument/InstrumentConfiguration.h"

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
  At("TSAL GetActivityExecution", [] { pendingInstrumentEvents["before"].Name = "changed"; });
  logging.SaveInstrumentEvent("before", "g");
  EXPECT_NE(Journal().find("TSAL SaveEvent('before' at no time [], 'before', 'g'"), std::string::npos);
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
