// What may be done at once: calls to TS through the gateway, and everything with the two slots. Says most under the
// thread sanitizer.

#include "InternalsTest.h"
#include "Memory.h"
#include "gateway/CurrentGateway.h"
#include "support/HostObjects.h"

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <future>
#include <latch>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace Quor::Velora::Infra::TsLogging {
namespace {

using Threads = InternalsTest;
using Actions = std::vector<std::function<void()>>;

/// Waits until as many threads have come as the latch counts; false when some do not.
bool Meet(std::latch& latch) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  latch.count_down();
  while (!latch.try_wait()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

void RunAtOnce(const Actions& actions) {
  std::vector<std::thread> threads;
  for (const auto& action : actions) {
    threads.emplace_back(action);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(Threads, AreInsideEveryCallToTsAtOnceAndTheGatewayIsReplacedMeanwhile) {
  const TolvaServices::Types::InstrumentEvent event;
  const TolvaServices::Types::Tsid id("g");
  TolvaServices::Types::ActivityExecution execution;
  const Actions calls = {
      [] { GetTolvaServicesClass()->BeginSession(); },
      [] { GetTolvaServicesClass()->BeginSession("a", "b", "c"); },
      [] { GetTolvaServicesClass()->IsTsServicePresent(); },
      [] { GetTolvaServicesClass()->IsConnectable(); },
      [&] { GetTolvaServicesClass()->SaveActivityExecution(execution); },
      [&] { GetTolvaServicesClass()->GetActivityExecution(id, true); },
      [] { GetTolvaServicesClass()->ReadAllTextFromFile("f"); },
      [&] { GetTolvaServicesClass()->SaveEvent(event, id, nullptr); },
      [] { GetTolvaServicesClass()->SaveInstrumentConfigWithResult("1", "2", "3", "4", "5", "6", "7"); },
  };
  const auto count = static_cast<std::ptrdiff_t>(calls.size()) + 1;
  for (const bool isHosts : {false, true}) {
    TsLogging::SetTolvaServicesInstance(isHosts ? std::make_shared<HostGateway>("gateway") : nullptr);
    std::latch inside(count), replaced(count);
    At("TSAL", [&] {
      EXPECT_TRUE(Meet(inside)) << "a call waits for another";
      EXPECT_TRUE(Meet(replaced));
    });
    Actions all = calls;
    all.push_back([&] {
      EXPECT_TRUE(Meet(inside));
      TsLogging::SetTolvaServicesInstance(nullptr);
      EXPECT_EQ(Journal().find("gateway released"), std::string::npos);
      EXPECT_TRUE(Meet(replaced));
    });
    RunAtOnce(all);
    EXPECT_EQ(Journal().ends_with("gateway released\n"), isHosts);
  }
}

TEST_F(Threads, AllGetOneObjectAndNotBeforeItsCheckIsDone) {
  constexpr std::size_t count = 4;
  for (int round = 0; round < 20; ++round) {
    Reset();
    std::latch entered(count);
    std::atomic<bool> isChecked = false;
    std::atomic<int> checks = 0;
    Fakes::TheScene().hook = [&](const std::string& entry) {
      if (entry.ends_with(">>Quor::Velora::Infra::TsLogging::TsLogging::GetInstance")) {
        EXPECT_TRUE(Meet(entered));
      } else if (StartsWith(entry, "TSAL IsConnectable")) {
        ++checks;
        EXPECT_FALSE(TsLogging::IsTsSupported());
        std::this_thread::sleep_for(std::chrono::milliseconds(2));  // for the others to overtake it, if they could
        isChecked = true;
      }
    };
    std::array<std::shared_ptr<ITsLogging>, count> objects;
    Actions actions;
    for (auto& object : objects) {
      actions.push_back([&] {
        object = TsLogging::GetInstance();
        EXPECT_TRUE(isChecked && TsLogging::IsTsSupported());
      });
    }
    RunAtOnce(actions);
    for (const auto& object : objects) {
      EXPECT_TRUE(object != nullptr && object == objects[0]);
    }
    EXPECT_EQ(checks, 1);
  }
}

/// Holds a lock as often as the system can count, so that to take it once more fails; nothing where that is not known.
class Exhausted {
 public:
  explicit Exhausted(std::recursive_mutex& mutex) : mutex(mutex) {
    mutex.lock();
    before = std::exchange(Count(), UINT_MAX);
  }
  Exhausted(const Exhausted&) = delete;
  Exhausted& operator=(const Exhausted&) = delete;
  ~Exhausted() {
    Count() = before;
    mutex.unlock();
  }
#ifdef __GLIBC__
  static constexpr bool isKnown = true;
  unsigned int& Count() { return mutex.native_handle()->__data.__count; }
#else
  static constexpr bool isKnown = false;
  unsigned int& Count() { return before; }
#endif

 private:
  std::recursive_mutex& mutex;
  unsigned int before = 0;
};

struct SlotUse {
  std::recursive_mutex& mutex;
  std::function<void()> operate;
  std::string lineBefore = {};  // of filling the slot, if it does so at all
  bool fills = true;
};

class SlotUses : public InternalsTest {
 protected:
  static void ExpectFilledUnderItsLock(const SlotUse& use) {
    std::optional<bool> isFree;
    const auto look = [&] { Memory::AtNext([&] { isFree = IsFree(use.mutex); }); };
    use.fills&& use.lineBefore.empty() ? look() : At(use.fills ? use.lineBefore : "nowhere", look);
    use.operate();
    Fakes::TheScene().hook = nullptr;
    EXPECT_EQ(isFree, use.fills ? std::optional(false) : std::nullopt) << "it fills the slot without the lock";
  }

  static void ExpectToWait(const SlotUse& use) {
    std::unique_lock lock(use.mutex);
    auto other = std::async(std::launch::async, use.operate);
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout) << "it does not wait";
    lock.unlock();
    other.get();
  }

  static void ExpectToRaiseWithoutTheLock(const SlotUse& use) {
    factorySlot.reset();
    const auto before = std::pair(instanceSlot, currentGateway);
    const std::lock_guard first(instanceMutex);  // in the order of the two
    const Exhausted exhausted(use.mutex);
    EXPECT_THROW(use.operate(), std::system_error);
    EXPECT_TRUE(before == std::pair(instanceSlot, currentGateway) && factorySlot.expired()) << "something changed";
  }
};

TEST_F(SlotUses, ReadAndFillASlotUnderItsLockAndRaiseWhenItCannotBeTaken) {
  const auto factory = std::make_shared<IFactory>();
  const auto setParent = [] { TsLogging::SetParentActivityExec("n", "a", "b", "c"); };
  const auto setGateway = [&] { SetFactory(factory, std::make_shared<HostGateway>("gateway")); };
  const SlotUse uses[] = {
      {gatewayMutex, [] { GetTolvaServicesClass(); }},
      {instanceMutex, [] { TsLogging::GetInstance(); }, "info >>Quor::Velora::Infra::TsLogging::TsLogging::GetInst"},
      {instanceMutex, setParent, "info Set Parent Activity execution"},
      {gatewayMutex, setGateway, "", false},
      {instanceMutex, setGateway, "", false},
      {instanceMutex, [&] { SetFactory(factory, std::make_shared<HostLogging>("logging")); }, "", false},
  };
  for (const SlotUse& use : uses) {
    SCOPED_TRACE(&use - uses);
    Reset();
    ExpectFilledUnderItsLock(use);
    ExpectToWait(use);
    if (Exhausted::isKnown) {
      ExpectToRaiseWithoutTheLock(use);
    }
  }
}

TEST_F(Threads, MayReadAndReplaceWhatIsInTheSlotsAtOnce) {
  for (int round = 0; round < 50; ++round) {
    Reset();
    // Behind their entry lines, since the journal's lock would put one use after the other.
    std::latch inTheMidst(8);
    Fakes::TheScene().hook = [&](const std::string& entry) {
      for (const char* line :
           {">>Quor::Velora::Infra::TsLogging::TsLogging::GetInstance",
            ">>Quor::Velora::Infra::TsLogging::TsLogging::SetInstance",
            ">>Quor::Velora::Infra::TsLogging::TsLogging::SetTolvaServicesInstance", "Set Parent Activity execution"}) {
        EXPECT_TRUE(entry != std::string("info ") + line || Meet(inTheMidst));
      }
    };
    RunAtOnce({
        [] { EXPECT_NE(TsLogging::GetInstance(), nullptr); },
        [] { TsLogging::SetParentActivityExec("n", "a", "b", "c"); },
        [] { TsLogging::SetInstance(std::make_shared<TsLogging>()); },
        [] { TsLogging::SetInstance(nullptr); },
        [] { TsLogging::SetTolvaServicesInstance(std::make_shared<HostGateway>("gateway")); },
        [] { TsLogging::SetTolvaServicesInstance(nullptr); },
        [&] { EXPECT_TRUE(Meet(inTheMidst) && GetTolvaServicesClass()->IsConnectable()); },
        [&] { EXPECT_TRUE(Meet(inTheMidst)), TsLogging::IsTsSupported(); },
    });
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
