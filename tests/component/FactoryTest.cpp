// The factory, and what a host puts into the slots.

#include "support/ComponentTest.h"

#include <regex>

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

TEST_F(Factory, ReplacedLoggingIsReleasedInsideTheCallAndFindsTheNewOne) {
  const auto replacement = std::make_shared<HostLogging>("new");
  std::shared_ptr<Library::ITsLogging> found;
  Fakes::TheScene().answers.servicePresent = false;
  library->SetLogging(nullptr, std::make_shared<HostLogging>("old", [&] { found = library->Create("i"); }));
  Journal();
  library->SetLogging(nullptr, replacement);
  EXPECT_EQ(found, replacement);
  EXPECT_EQ(Journal(), Scope("SetInstance", "old released", Scope("CreateTsLoggingSession", checkedPresence),
                             Scope("GetInstance")));
}

TEST_F(Factory, ReplacedGatewayIsReleasedInsideTheCallAndFindsTheNewOne) {
  const auto logging = BroughtUp();
  library->SetGateway(nullptr, std::make_shared<HostGateway>("old", [&] { logging->SaveInstrumentEvent("A", ""); }));
  Journal();
  library->SetGateway(nullptr, std::make_shared<HostGateway>("new"));
  EXPECT_EQ(Journal(), Scope("SetTolvaServicesInstance", "old released",
                             Scope("SaveInstrumentEvent",
                                   "info Save instrument event. node: A, activityTsidGuid: ", "the host's gateway:",
                                   "TSAL SaveEvent('' at no time [], 'configuration', null, false, Empty)")));
}

TEST_F(Factory, GatewayReplacedInsideAnyOfItsCallsLivesToTheEndOfThatCallAlone) {
  const auto logging = BroughtUp();
  const auto replace = [&] { library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway")); };
  replace();
  Journal();
  At("TSAL", replace);
  library->Create("i");                                  // 8 calls
  logging->CreateActivityExecution("p", "v", "n", "d");  // 3
  logging->CreateActivityExecution("v", "n", "d");       // 2
  logging->UpdateActivityExecution("g");                 // 2
  logging->SaveInstrumentEvent("A", "g");                // 2
  logging->SaveInstrumentEvent("A", "");                 // 1
  const std::string calls = std::regex_replace(Journal(), std::regex("(info|KivAccess) [^\n]*\n"), "");
  const std::regex oneCall("the host's gateway:\nTSAL [^\n]*\n(session released\n)?gateway released\n");
  EXPECT_EQ(std::regex_replace(calls, oneCall, "."), std::string(18, '.'));
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

TEST_F(Factory, ObjectWhoseCheckRaisedStaysAndIsNotCheckedAgain) {
  int asked = 0;
  At("TSAL IsTsServicePresent", [&] { ++asked == 2 ? throw std::runtime_error("presence") : void(); });
  EXPECT_THROW(library->Create("i"), std::runtime_error);
  EXPECT_TRUE(Journal().ends_with(Scope("GetInstance", checkedPresence)));
  EXPECT_NE(library->Create("i"), nullptr);
  EXPECT_EQ(asked, 3);
}

}  // namespace
