// Activity executions: what is written, what TS is asked, and the guid that comes back.

#include "support/ComponentTest.h"

namespace {

using Executions = ComponentTest;

const std::string present = "TSAL IsTsServicePresent()";
constexpr const char* create = "CreateActivityExecution";

TEST_F(Executions, WithoutAParentAreOfKindFive) {
  Fakes::TheScene().answers.versions = {oddText};
  Fakes::TheScene().answers.newGuid = oddText;
  const auto logging = BroughtUp();
  EXPECT_EQ(logging->CreateActivityExecution(oddText, oddText, oddText), oddText);
  EXPECT_EQ(Journal(), Scope(create, present,
                             "TSAL SaveActivityExecution('' version 'version of " + oddText + "' status 4 now node '" +
                                 oddText + "' description '" + oddText + "' kind 5 parent null, Empty)",
                             "info Create activity execution. regActivityVersionName: " + oddText +
                                 ", node: " + oddText + ", description: " + oddText + ", new guid: " + oddText));
}

TEST_F(Executions, WithAParentAreLinkedToItAsFetchedWhateverItHolds) {
  const auto logging = BroughtUp();
  Fakes::TheScene().answers.fetchedGuid = "as stored";
  Fakes::TheScene().answers.fetchedDescription = "";
  EXPECT_EQ(logging->CreateActivityExecution(oddText, "Section", "n", "d"), "new guid");
  EXPECT_EQ(Journal(), Scope(create, present, "TSAL GetActivityExecution('" + oddText + "', true, null)",
                             "TSAL SaveActivityExecution('' version 'version of Section' status 4 now node 'n' "
                             "description 'd' kind 0 parent 'as stored', Empty)",
                             "info Create activity execution.  parentActivityGuid: " + oddText +
                                 ", regActivityVersionName: Section, node: n, description: d, new guid: new guid"));
}

TEST_F(Executions, AreNotMadeForAnEmptyParentOrWithoutThePresentService) {
  const auto logging = BroughtUp();
  const std::string withParent = "info Create activity execution.  parentActivityGuid: ";
  const std::string rest = "regActivityVersionName: v, node: n, description: d, new guid: ";
  EXPECT_EQ(logging->CreateActivityExecution("", "v", "n", "d"), "");
  EXPECT_EQ(Journal(), Scope(create, present, withParent + ", " + rest));

  Fakes::TheScene().answers.servicePresent = false;
  EXPECT_EQ(logging->CreateActivityExecution("p", "v", "n", "d"), "");
  EXPECT_EQ(Journal(), Scope(create, present, withParent + "p, " + rest));
  EXPECT_EQ(logging->CreateActivityExecution("v", "n", "d"), "");
  EXPECT_EQ(Journal(), Scope(create, present, "info Create activity execution. " + rest));
}

TEST_F(Executions, AreUpdatedWithStatusFourteenAndOtherwiseAsFetched) {
  const auto logging = BroughtUp();
  logging->UpdateActivityExecution(oddText);
  EXPECT_EQ(Journal(), Scope("UpdateActivityExecution", "info Update activity execution. guid: " + oddText,
                             "TSAL GetActivityExecution('" + oddText + "', false, null)",
                             "TSAL SaveActivityExecution('" + oddText +
                                 "' version 'version of fetched' status 14 now node 'fetched node' "
                                 "description 'fetched description' kind 3 parent 'parent of fetched', Empty)"));
  logging->UpdateActivityExecution("");
  EXPECT_EQ(Journal(), Scope("UpdateActivityExecution", "info Update activity execution. guid: "));
}

TEST_F(Executions, WithoutTsAreRefusedWithOneErrorLine) {
  Fakes::TheScene().answers.servicePresent = false;
  const auto logging = BroughtUp();
  EXPECT_EQ(logging->CreateActivityExecution("v", "n", "d"), "");
  EXPECT_EQ(logging->CreateActivityExecution("p", "v", "n", "d"), "");
  logging->UpdateActivityExecution("g");
  EXPECT_EQ(Journal(), Scope(create, cannotCreate) + Scope(create, cannotCreate) + Scope("UpdateActivityExecution"));
}

}  // namespace
