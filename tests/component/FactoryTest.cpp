// The factory, and what a host puts into the slots.

#include "support/ComponentTest.h"
#include "support/Patterns.h"

namespace {

using Factory = ComponentTest;

TEST_F(Factory, IsTheSameWhileSomebodyHoldsItAndThenANewOne) {
  const std::function<void(std::shared_ptr<Library::IFactory>)> ways[] = {
      [](auto) {}, [&](auto factory) { library->SetLogging(factory, nullptr); },
      [&](auto factory) { library->SetGateway(factory, nullptr); }};
  for (const auto& put : ways) {
    auto factory = &put == ways ? library->GetFactory() : std::make_shared<Library::IFactory>();
    put(factory);
    EXPECT_EQ(library->GetFactory(), factory);
    put(nullptr);
    EXPECT_EQ(library->GetFactory() == factory, &put == ways) << "an empty one takes the place too";
    put(factory);
    const std::weak_ptr<Library::IFactory> former = factory;
    factory.reset();
    EXPECT_TRUE(former.expired());
    factory = library->GetFactory();
    ASSERT_NE(factory, nullptr);
    EXPECT_TRUE(former.owner_before(factory) || factory.owner_before(former));
  }
}

TEST_F(Factory, HostsLoggingIsReturnedUncheckedAfterTheWholeBringUp) {
  PutSettings(current);
  const auto logging = std::make_shared<HostLogging>("logging");
  library->SetLogging(nullptr, logging);
  EXPECT_EQ(library->Create("i"), logging);
  EXPECT_EQ(Journal(), Scope("SetInstance") +
                           Scope("CreateTsLoggingSession", Check(root, "TSAL SetTsalPath('')"), DataRootLines(root),
                                 SessionLines(Registration("activities.xml"), "i")) +
                           Scope("GetInstance"));
}

TEST_F(Factory, GatewayReplacedInsideAnyOfItsCallsLivesToTheEndOfThatCallAlone) {
  const auto logging = BroughtUp();
  const auto replace = [&] { library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway")); };
  replace();
  Journal();
  At("TSAL", replace);
  library->Create("i");                                                     // 8 calls
  static_cast<void>(logging->CreateActivityExecution("p", "v", "n", "d"));  // 3
  static_cast<void>(logging->CreateActivityExecution("v", "n", "d"));       // 2
  logging->UpdateActivityExecution("g");                                    // 2
  logging->SaveInstrumentEvent("A", "g");                                   // 2
  logging->SaveInstrumentEvent("A", "");                                    // 1
  const std::string calls = ReplaceMatches(Journal(), "(info|KivAccess) [^\n]*\n", "");
  const std::string oneCall = "the host's gateway:\nTSAL [^\n]*\n(session released\n)?gateway released\n";
  EXPECT_EQ(ReplaceMatches(calls, oneCall, "."), std::string(18, '.'));
}

TEST_F(Factory, WhatIsInTheSlotAfterTheCheckIsHandedOut) {
  Fakes::TheScene().answers.servicePresent = false;  // one question in bring-up, and one for the new object
  for (const auto& installed : {std::make_shared<HostLogging>("other"), std::shared_ptr<HostLogging>()}) {
    EmptySlots();
    int asked = 0;
    At("TSAL IsTsServicePresent", [&] { ++asked == 2 ? library->SetLogging(nullptr, installed) : void(); });
    EXPECT_EQ(library->Create("i"), installed);
  }
}

}  // namespace
