// Which child of a host can use the C interface, and that none waits for a thread that only its parent has.

#include "CInterfaceTest.h"

#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace {

const std::string tooLate =
    "velora_ts_create_event: this process was forked after a session began, or during a call; expected a fork before "
    "the first session, or another program in the child";

class ForksInC : public CInterfaceTest {
 protected:
  static void InChild(const std::function<void()>& work) {
    const pid_t process = fork();
    if (process == 0) {
      alarm(20);  // a child that waits for ever ends by this signal
      work();
      _exit(HasFailure() ? 1 : 0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }

  void ExpectTooLate() {
    Journal();
    EXPECT_EQ(library->create_event(logging, "e", 1), VELORA_TS_MISUSE);
    EXPECT_EQ(Error(), tooLate);
    EXPECT_EQ(Journal(), "") << "nothing reaches the component";
  }

  /// Forks while another thread is inside the component, at a call that writes a line.
  void ForkBeside(const std::function<void()>& call, const std::function<void()>& inChild) {
    std::promise<void> isInside, hasForked;
    bool isFirst = true;
    At("info ", [&] {
      if (!std::exchange(isFirst, false)) {
        return;
      }
      isInside.set_value();
      hasForked.get_future().wait();
    });
    std::thread inside(call);
    isInside.get_future().wait();
    InChild(inChild);
    hasForked.set_value();
    inside.join();
    Fakes::TheScene().hook = nullptr;
  }
};

TEST_F(ForksInC, LeaveAChildOutsideAfterTheFirstSession) {
  const auto child = [this] {
    ExpectTooLate();
    InChild([this] { ExpectTooLate(); });
    library.reset();
  };
  InChild(child);
  ForkBeside([this] { EXPECT_EQ(library->create_event(logging, "e", 1), VELORA_TS_OK); }, child);
  EXPECT_EQ(library->create_event(logging, "e", 1), VELORA_TS_OK) << Error();
}

TEST_F(ForksInC, LeaveAChildOutsideThatBeganDuringACall) {
  Unload();
  library = std::make_unique<CLibrary>(file);
  const auto call = [this] { EXPECT_EQ(library->set_gateway(nullptr), VELORA_TS_OK) << Error(); };
  ForkBeside(call, [this] { ExpectTooLate(); });
  At("info ", [this] { InChild([this] { ExpectTooLate(); }); });
  call();
  Fakes::TheScene().hook = nullptr;
  std::thread(call).join();  // the lock is free again
}

TEST_F(ForksInC, LetAChildRecordThatBeganBeforeTheFirstSession) {
  Unload();
  library = std::make_unique<CLibrary>(file);
  EXPECT_EQ(library->create_event(nullptr, "e", 1), VELORA_TS_MISUSE);
  const auto record = [this] {
    EXPECT_EQ(library->create_logging("i", 1, nullptr, 0, &logging), VELORA_TS_OK) << Error();
    EXPECT_EQ(library->save_event(logging, "e", 1, "", 0), VELORA_TS_OK) << Error();
    EXPECT_NE(Journal().find("TSAL SaveEvent"), std::string::npos);
  };
  InChild([&] {
    record();
    std::thread(record).join();
    InChild([this] { ExpectTooLate(); });
    Unload();
  });
  record();
  Unload();
  InChild([] {});  // nothing of the library is called any more
}

}  // namespace
