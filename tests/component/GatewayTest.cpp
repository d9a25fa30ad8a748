// The default gateway before a TSAL that writes down what it is asked, and the slot of the current one.

#include "InternalsTest.h"
#include "gateway/CurrentGateway.h"
#include "gateway/TolvaServicesClass.h"
#include "support/HostObjects.h"

#include <array>
#include <future>

namespace Quor::Velora::Infra::TsLogging {
namespace {

using Gateway = InternalsTest;

TEST_F(Gateway, SettingsPathReachesTsalUnlessItWasHandedOverLast) {
  enum Outcome { Kept, Reaches, Raises };
  const std::string x("/x\0y", 4), sameUpToItsZero("/x\0z", 4);
  const std::pair<std::string, Outcome> calls[] = {
      {"", Reaches}, {"", Kept},     {x, Reaches}, {x, Kept},       {sameUpToItsZero, Reaches},
      {x, Reaches},  {"/r", Raises}, {x, Kept},    {"/r", Reaches}, {"/r", Kept}};
  TolvaServicesClass gateway;
  for (const auto& [path, outcome] : calls) {
    const auto call = [&, asked = path] { gateway.SetTsalPath(asked); };
    EXPECT_EQ(RaisesAt(outcome == Raises ? "TSAL" : "", call), outcome == Raises);
    EXPECT_EQ(Journal(), outcome == Kept ? "" : Lines("TSAL SetTsalPath('" + path + "')")) << path;
  }
}

TEST_F(Gateway, ActivitiesFileReachesTsalUnlessItWasRegisteredLast) {
  struct Call {
    const char* path;  // null for the form without one
    bool raises, reaches;
    const char *told, *answered;  // the version that TS would answer with, and the one that comes back
  };
  const Call calls[] = {
      {"", false, true, "a", "a"},     {nullptr, false, false, "b", "a"}, {"P", false, true, "c", "c"},
      {"P", false, false, "d", "c"},   {nullptr, false, true, "e", "e"},  {"P", false, true, "f", "f"},
      {"R", true, true, "g", nullptr}, {"P", false, false, "h", "f"},     {"R", false, true, "i", "i"}};
  TolvaServicesClass gateway;
  for (const Call& call : calls) {
    SCOPED_TRACE(call.told);
    Fakes::TheScene().answers.versions = {call.told};
    const auto act = [&] {
      ActivityVersionMap versions = call.path == nullptr ? gateway.RegisterAndGetActivityVersions()
                                                         : gateway.RegisterAndGetActivityVersions(call.path);
      EXPECT_TRUE(versions.size() == 1 && versions.contains(call.answered));
      versions.clear();  // a copy: later calls are still answered
    };
    EXPECT_EQ(RaisesAt(call.raises ? "TSAL" : "", act), call.raises);
    EXPECT_EQ(Journal(), call.reaches ? Lines(Registration(call.path == nullptr ? "" : call.path)) : "");
  }
}

TEST_F(Gateway, SessionWithTextsIsBegunAndItsHandleDroppedAtOnce) {
  TolvaServicesClass().BeginSession(oddText, "b", "c");
  EXPECT_EQ(Journal(), Lines("TSAL BeginSession('" + oddText + "', 'b', 'c')", "session released"));
}

TEST_F(Gateway, IsOneForAllThreadsThatAskFirstAtOnce) {
  for (int round = 0; round < 100; ++round) {
    SetTolvaServicesClass(nullptr);
    std::array<std::future<std::shared_ptr<ITolvaServicesClass>>, 4> answers;
    for (auto& answer : answers) {
      answer = std::async(std::launch::async, GetTolvaServicesClass);
    }
    for (auto& answer : answers) {
      EXPECT_EQ(answer.get(), GetTolvaServicesClass());
    }
  }
}

TEST_F(Gateway, AndLoggingAreReleasedUnderTheirLocksAndNoCallIsMadeUnderTheGateways) {
  const auto isFree = [](std::recursive_mutex& mutex) {
    return std::async(std::launch::async, [&] { return mutex.try_lock() && (mutex.unlock(), true); }).get();
  };
  bool free = true;
  TsLogging::SetInstance(std::make_shared<HostLogging>("logging", [&] { free = isFree(instanceMutex); }));
  TsLogging::SetInstance(nullptr);
  EXPECT_FALSE(free);
  TsLogging::SetTolvaServicesInstance(
      std::make_shared<HostGateway>("gateway", [&] { free = isFree(gatewayMutex) || isFree(instanceMutex); }));
  free = true;
  TsLogging::SetTolvaServicesInstance(nullptr);
  EXPECT_FALSE(free);
  At("TSAL IsConnectable", [&] { free = isFree(gatewayMutex); });
  TsLogging::CheckTsServiceAvailability("a");
  EXPECT_TRUE(free);
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
