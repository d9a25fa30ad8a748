#pragma once

#include <TSAL/Methods.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <memory>
#include <string>

/// A host, in a process of its own, that has begun a run and records what it is told.
class ObedientHost {
 public:
  ObedientHost(const std::string& folder, const std::string& node) {
    EXPECT_EQ(pipe2(orders.data(), O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(answers.data(), O_CLOEXEC), 0);
    process = fork();
    if (process == 0) {
      close(orders[1]);
      Live(folder, node);
    }
    close(orders[0]);
    close(answers[1]);
    Await();
  }
  ObedientHost(const ObedientHost&) = delete;
  ObedientHost& operator=(const ObedientHost&) = delete;
  ~ObedientHost() { Kill(); }

  void Record(double defocus) const {
    EXPECT_EQ(write(orders[1], &defocus, sizeof(defocus)), static_cast<ssize_t>(sizeof(defocus)));
    Await();
  }
  void Kill() { End(SIGKILL); }
  /// Lets it finish its run.
  void Finish() { End(0); }

 private:
  void Await() const {
    char told = 0;
    EXPECT_EQ(read(answers[0], &told, 1), 1) << "the host has ended";
  }
  void End(int signal) {
    if (process > 0) {
      kill(process, signal);
      close(orders[1]);
      waitpid(process, nullptr, 0);
      close(answers[0]);
      process = 0;
    }
  }

  [[noreturn]] void Live(const std::string& folder, const std::string& node) const {
    using namespace Quor::TolvaServices;
    using namespace Quor::TolvaServices::Types;
    const SessionHandle& session = SessionHandle::Empty;
    TSInstance::SetTsalPath(folder);
    TSInstance::BeginSession();
    ActivityExecution run;
    run.Node = node;
    run.ActivityVersion.Id = Tsid("01234567-89ab-4def-8123-456789abcdef");
    run.ActivityVersion.Name = "Session";
    run.Status = {Enums::ActivityExecStatus::Running, DateTimeOffset::Now()};
    Methods::ActivityMethods::SaveActivityExecution(run, session);
    double defocus = 0;
    while (write(answers[1], "!", 1) == 1 && read(orders[0], &defocus, sizeof(defocus)) > 0) {
      InstrumentEvent event{"Image", {}, {std::make_shared<InstrumentParameterDouble>("Defocus", defocus)}, {}, {}};
      Methods::LoggingMethods::SaveEvent(event, Tsid(), &run.Id, false, session);
    }
    run.Status = {Enums::ActivityExecStatus::Done, DateTimeOffset::Now()};
    Methods::ActivityMethods::SaveActivityExecution(run, session);
    _exit(0);
  }

  std::array<int, 2> orders{}, answers{};
  pid_t process = 0;
};
