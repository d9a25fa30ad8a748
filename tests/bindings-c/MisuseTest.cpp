// What a host does wrong, and what runs beside it: nothing of it crashes, and nothing of it reaches the component.

#include "CInterfaceTest.h"
#include "component/Memory.h"

#include <pthread.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

#define GUID guid.data(), guid.size(), &size

namespace {

using MisuseInC = CInterfaceTest;

TEST_F(MisuseInC, EndsInAnErrorBeforeAnythingIsDone) {
  std::array<char, VELORA_TS_GUID_CAPACITY> guid{};
  guid.fill('x');
  std::size_t size = 7;
  velora_ts_logging *closed = nullptr, *another = nullptr;
  velora_ts_configurator* configurator = nullptr;
  ASSERT_EQ(library->create_logging("i", 1, nullptr, 0, &closed), VELORA_TS_OK);
  ASSERT_EQ(library->close_logging(closed), VELORA_TS_OK);
  ASSERT_EQ(library->create_configurator(&configurator), VELORA_TS_OK);
  auto* const foreign = reinterpret_cast<velora_ts_logging*>(&guid);
  auto* const ofAnotherKind = reinterpret_cast<velora_ts_logging*>(configurator);
  auto* const next = reinterpret_cast<velora_ts_logging*>(reinterpret_cast<std::uintptr_t>(configurator) + 2);
  const std::size_t tooLarge = SIZE_MAX / 2 + 1;
  struct Row {
    std::string words;
    std::function<velora_ts_status()> call;
  };
  const std::vector<Row> rows = {
      {"create_logging: logging is null", [&] { return library->create_logging("i", 1, nullptr, 0, nullptr); }},
      {"create_logging: configuration is null, and its size is not 0",
       [&] { return library->create_logging(nullptr, zero, nullptr, 0, &another); }},
      {"create_logging: the size of activities is beyond all memory",
       [&] { return library->create_logging("i", 1, "a", tooLarge, &another); }},
      {"close_logging: the handle of a logging object is closed", [&] { return library->close_logging(closed); }},
      {"close_logging: the handle is that of a configurator; expected that of a logging object",
       [&] { return library->close_logging(ofAnotherKind); }},
      {"create_execution: the handle of a logging object is null",
       [&] { return library->create_execution(nullptr, "v", 1, "n", 1, "d", 1, GUID); }},
      {"create_execution: description is null, and its size is not 0",
       [&] { return library->create_execution(logging, "v", 1, "n", 1, nullptr, 1, GUID); }},
      {"create_execution: guid is null",
       [&] { return library->create_execution(logging, "v", 1, "n", 1, "d", 1, nullptr, guid.size(), &size); }},
      {"create_execution: guid_capacity is 39, expected at least 40",
       [&] { return library->create_execution(logging, "v", 1, "n", 1, "d", 1, guid.data(), 39, &size); }},
      {"create_execution_under: parent is null, and its size is not 0",
       [&] { return library->create_execution_under(logging, nullptr, 1, "v", 1, "n", 1, "d", 1, GUID); }},
      {"create_execution_under: guid is null",
       [&] { return library->create_execution_under(logging, "p", 1, "v", 1, "n", 1, "d", 1, nullptr, 40, &size); }},
      {"update_execution: the handle of a logging object is no handle of this library",
       [&] { return library->update_execution(foreign, "g", 1); }},
      {"create_event: the handle of a logging object is no handle of this library",
       [&] { return library->create_event(next, "e", 1); }},
      {"create_event: name is null, and its size is not 0",
       [&] { return library->create_event(logging, nullptr, zero); }},
      {"save_event: guid is null, and its size is not 0",
       [&] { return library->save_event(logging, "e", 1, nullptr, 1); }},
      {"add_bool: parameter is null, and its size is not 0",
       [&] { return library->add_bool(logging, "e", 1, nullptr, 1, 1); }},
      {"add_double: event is null, and its size is not 0",
       [&] { return library->add_double(logging, nullptr, 1, "p", 1, 1); }},
      {"add_int: the handle of a logging object is closed",
       [&] { return library->add_int(closed, "e", 1, "p", 1, 1); }},
      {"add_text: value is null, and its size is not 0",
       [&] { return library->add_text(logging, "e", 1, "p", 1, nullptr, 1); }},
      {"create_configurator: configurator is null", [&] { return library->create_configurator(nullptr); }},
      {"close_configurator: the handle is that of a logging object; expected that of a configurator",
       [&] { return library->close_configurator(reinterpret_cast<velora_ts_configurator*>(logging)); }},
      {"set_parent: text3 is null, and its size is not 0",
       [&] { return library->set_parent(configurator, "n", 1, "", 0, "", 0, nullptr, 1, nullptr, 0, GUID); }},
      {"set_parent: guid_capacity is 0, expected at least 40",
       [&] {
         return library->set_parent(configurator, "n", 1, "", 0, "", 0, "", 0, nullptr, 0, guid.data(), 0, &size);
       }},
      {"available: configuration is null, and its size is not 0",
       [&] { return library->available(nullptr, 1, nullptr, 0); }},
  };
  Journal();
  for (const Row& row : rows) {
    EXPECT_EQ(row.call(), VELORA_TS_MISUSE);
    EXPECT_EQ(Error(), "velora_ts_" + row.words);
    EXPECT_EQ(Journal(), "");
    EXPECT_EQ(std::string(guid.data(), guid.size()) + std::to_string(size), std::string(guid.size(), 'x') + "7");
  }
  EXPECT_EQ(library->close_logging(nullptr), VELORA_TS_OK);
  EXPECT_EQ(library->close_configurator(nullptr), VELORA_TS_OK);
}

TEST_F(MisuseInC, OfMemoryEndsInAnErrorToo) {
  if (!Memory::isAllInReach) {
    GTEST_SKIP() << "a DLL does not see a program's own operator new";
  }
  const std::string lost = "velora_ts: there is no memory for the text of the error", text(100, 't');
  const std::vector<std::function<velora_ts_status()>> calls = {
      [&] { return library->add_text(logging, text.data(), text.size(), "p", 1, text.data(), text.size()); },
      [&] { return library->update_execution(nullptr, "g", 1); }};
  for (const auto& call : calls) {
    for (const bool andLater : {false, true}) {
      bool refused = true;
      for (int number = 0; refused; ++number) {
        // On a thread that has no text of an error yet.
        std::thread([&] {
          Memory::RefuseFrom(number, andLater);
          const velora_ts_status status = call();
          refused = Memory::RefuseNoMore().has_value();
          const std::string error = Error();
          SCOPED_TRACE(error);
          if (status == VELORA_TS_NO_MEMORY) {
            EXPECT_TRUE(refused && (error == lost || error.ends_with(": there is no memory")));
          } else if (status == VELORA_TS_MISUSE) {
            EXPECT_TRUE(error.ends_with(" is null") || (refused && error == lost));
          } else {
            EXPECT_EQ(status, VELORA_TS_OK);
          }
          EXPECT_EQ(library->create_event(nullptr, "e", 1), VELORA_TS_MISUSE);
          EXPECT_EQ(Error(), "velora_ts_create_event: the handle of a logging object is null");
        }).join();
      }
    }
  }
}

class ThreadsInC : public CInterfaceTest {
 public:
  void CreateAnEvent() { EXPECT_EQ(library->create_event(logging, "e", 1), VELORA_TS_OK); }
};

TEST_F(ThreadsInC, EnterOneAtATimeAndHaveErrorsOfTheirOwn) {
  std::atomic<int> inside = 0, errors = 0;
  Fakes::TheScene().hook = [&](const std::string& /*entry*/) {
    EXPECT_EQ(++inside, 1);
    std::this_thread::yield();
    --inside;
  };
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&, name = "event " + std::to_string(number)] {
      EXPECT_EQ(Error(), "");
      for (int time = 0; time < 50; ++time) {
        velora_ts_logging* own = nullptr;
        std::array<char, VELORA_TS_GUID_CAPACITY> guid{};
        EXPECT_EQ(library->create_logging("i", 1, nullptr, 0, &own), VELORA_TS_OK);
        EXPECT_EQ(library->create_event(own, name.c_str(), zero), VELORA_TS_OK);
        EXPECT_EQ(library->add_int(own, name.c_str(), zero, "p", 1, time), VELORA_TS_OK);
        EXPECT_EQ(library->create_execution(own, "v", 1, "n", 1, "d", 1, guid.data(), guid.size(), nullptr),
                  VELORA_TS_OK);
        EXPECT_EQ(library->close_logging(own), VELORA_TS_OK);
        EXPECT_EQ(library->create_execution(logging, "v", 1, "n", 1, "d", 1, guid.data(), name.size(), nullptr),
                  VELORA_TS_MISUSE);
        errors += Error() == "velora_ts_create_execution: guid_capacity is 7, expected at least 40" ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(errors, 4 * 50);
}

TEST_F(ThreadsInC, StayOutsideWhileTheProcessEnds) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "other threads end before the library leaves here";
  }
  const auto endBesideAThread = [this] {
    static std::latch libraryHasLeft(1), called(1);
    Unload();
    std::atexit([] {  // is done after what the library, loaded later, has to do at the end
      libraryHasLeft.count_down();
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      std::fputs(called.try_wait() ? "called" : "waits", stderr);
    });
    Load();
    std::thread([stays = library.release()] {
      libraryHasLeft.wait();
      stays->create_event(nullptr, "e", 1);
      called.count_down();
    }).detach();
    std::exit(0);
  };
  // In a process that begins anew: a forked one releases nothing of the session that its parent began.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(endBesideAThread(), testing::ExitedWithCode(0), "^waits$");
}

TEST_F(ThreadsInC, AreCancelledOnlyOutside) {
  if (!System::pathsAreBytes) {
    GTEST_SKIP() << "MinGW cancels a thread by other means";
  }
  At("info ", [] {
    pthread_cancel(pthread_self());
    pthread_testcancel();
  });
  const auto run = [](void* test) -> void* {
    static_cast<ThreadsInC*>(test)->CreateAnEvent();
    pthread_testcancel();
    return nullptr;
  };
  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, nullptr, run, static_cast<ThreadsInC*>(this)), 0);
  void* result = nullptr;
  EXPECT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  Fakes::TheScene().hook = nullptr;
  CreateAnEvent();  // nobody is inside
}

using UnloadingInC = CInterfaceTest;

TEST_F(UnloadingInC, ReleasesWhatAHostHoldsAndWhatItsThreadsLeave) {
  constexpr int measured = 100, times = 300 + measured;
  std::size_t inUse = 0;
  for (int time = 0; time < times; ++time) {
    velora_ts_configurator* configurator = nullptr;
    EXPECT_EQ(library->create_configurator(&configurator), VELORA_TS_OK);
    EXPECT_EQ(library->create_event(nullptr, "e", 1), VELORA_TS_MISUSE);
    std::thread([this] { EXPECT_EQ(library->update_execution(nullptr, "g", 1), VELORA_TS_MISUSE); }).join();
    Unload();
    Load();
    // By then the loader has made its tables, and malloc keeps as many of their parts for the thread as it ever does.
    inUse = time == times - measured ? System::MemoryInUse() : inUse;
  }
  // MinGW's thread library keeps 24 bytes for each of the three mutexes, of which two are the component's.
  const std::size_t kept = System::pathsAreBytes ? 0 : 3 * 24 * measured;
  // The smallest allocation takes 32 bytes, so one for each time exceeds this.
  const std::size_t varies = 16 * measured;
  EXPECT_LE(System::MemoryInUse(), inUse + varies + kept);
}

}  // namespace
