// The default gateway before a TSAL that writes down what it is asked, and the slot of the current one.

#include "InternalsTest.h"
#include "gateway/TolvaServicesClass.h"
#include "support/HostObjects.h"

namespace Quor::Velora::Infra::TsLogging {
namespace {

using Gateway = InternalsTest;

TEST_F(Gateway, SettingsPathReachesTsalUnlessItWasHandedOverLast) {
  const std::string x("/x\0y", 4), sameUpToItsZero("/x\0z", 4);
  const std::pair<std::string, bool> calls[] = {{"", true}, {"", false}, {x, true}, {x, false}, {sameUpToItsZero, true},
                                                {x, true}};
  TolvaServicesClass gateway;
  for (const auto& [path, reaches] : calls) {
    gateway.SetTsalPath(path);
    EXPECT_EQ(Journal(), reaches ? Lines("TSAL SetTsalPath('" + path + "')") : "") << path;
  }
}

TEST_F(Gateway, ActivitiesFileReachesTsalUnlessItWasRegisteredLast) {
  struct Call {
    const char* path;  // null for the form without one
    bool reaches;
    const char *told, *answered;  // the version that TS would answer with, and the one that comes back
  };
  const Call calls[] = {{"", true, "a", "a"},   {nullptr, false, "b", "a"}, {"P", true, "c", "c"},
                        {"P", false, "d", "c"}, {nullptr, true, "e", "e"},  {"P", true, "f", "f"}};
  TolvaServicesClass gateway;
  for (const Call& call : calls) {
    SCOPED_TRACE(call.told);
    Fakes::TheScene().answers.versions = {call.told};
    ActivityVersionMap versions = call.path == nullptr ? gateway.RegisterAndGetActivityVersions()
                                                       : gateway.RegisterAndGetActivityVersions(call.path);
    EXPECT_TRUE(versions.size() == 1 && versions.contains(call.answered));
    versions.clear();  // a copy: later calls are still answered
    EXPECT_EQ(Journal(), call.reaches ? Lines(Registration(call.path == nullptr ? "" : call.path)) : "");
  }
}

TEST_F(Gateway, AndLoggingAreReleasedUnderTheirLocks) {
  bool free = true;
  TsLogging::SetInstance(std::make_shared<HostLogging>("logging", [&] { free = IsFree(instanceMutex); }));
  TsLogging::SetInstance(nullptr);
  EXPECT_FALSE(free);
  TsLogging::SetTolvaServicesInstance(
      std::make_shared<HostGateway>("gateway", [&] { free = IsFree(gatewayMutex) || IsFree(instanceMutex); }));
  free = true;
  TsLogging::SetTolvaServicesInstance(nullptr);
  EXPECT_FALSE(free);
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
