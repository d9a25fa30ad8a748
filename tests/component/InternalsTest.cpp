#include "InternalsTest.h"

#include <future>

void InternalsTest::Reset() {
  using namespace Quor::Velora::Infra::TsLogging;
  Fakes::TheScene() = {};
  systemCalls = {};
  factorySlot.reset();
  instanceSlot.reset();
  currentGateway.reset();
  tsSupported = false;
  pendingInstrumentEvents.clear();
  activityVersions.clear();
  parentActivityExecGuid.clear();
  instrumentConfigResult = {};
}

bool InternalsTest::IsFree(std::recursive_mutex& mutex) {
  return std::async(std::launch::async, [&] { return mutex.try_lock() && (mutex.unlock(), true); }).get();
}
