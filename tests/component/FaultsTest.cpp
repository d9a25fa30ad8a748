// What is raised through the library as it is shipped: of which type it is, and where it ends.

#include "support/ComponentTest.h"

#include <new>

namespace {

using Faults = ComponentTest;

TEST_F(Faults, OfAnyTypeAfterThePresenceQuestionMeanThatTsIsNotAvailable) {
  struct Unknown {};
  const std::function<void()> raises[] = {[] { throw 5; }, [] { throw std::runtime_error("fault"); },
                                          [] { throw std::bad_alloc(); }, [] { throw Unknown(); },
                                          [] { throw Quor::TolvaServices::TsError("fault"); }};
  for (const auto& raise : raises) {
    SCOPED_TRACE(&raise - raises);
    Fakes::TheScene().hook = nullptr;
    BroughtUp()->CreateInstrumentEvent("it was available before");
    EmptySlots();
    At("TSAL IsConnectable", raise);
    const auto logging = library->Create("i");
    EXPECT_NE(Journal().find(notSupported), std::string::npos);
    static_cast<void>(logging->CreateActivityExecution("v", "n", "d"));
    EXPECT_EQ(Journal(), Scope("CreateActivityExecution", cannotCreate));
  }
}

TEST_F(Faults, OfTsalAreCaughtByAHostByTheirType) {
  const auto logging = BroughtUp();
  At("TSAL SaveEvent", [] { throw Quor::TolvaServices::TsError("reason"); });
  try {
    logging->SaveInstrumentEvent("A", "");
    ADD_FAILURE() << "nothing was raised";
  } catch (const Quor::TolvaServices::TsError& error) {
    EXPECT_STREQ(error.what(), "reason");
  }
}

}  // namespace
