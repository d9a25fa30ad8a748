#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

/// A process that does something, tells that it is done, and then lives until it is killed.
class Process {
 public:
  template <typename Work>
  explicit Process(const Work& work) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    process = fork();
    if (process == 0) {
      setpgid(0, 0);
      work();
      Tell(ends[1]);
      for (;;) {
        pause();
      }
    }
    close(ends[1]);
    char told = 0;
    EXPECT_EQ(read(ends[0], &told, 1), 1) << "the process ended";
    close(ends[0]);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  /// Ends its children too.
  ~Process() {
    kill(-process, SIGKILL);
    Kill();
  }

  void Kill() const {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }

 private:
  static void Tell(int end) {
    if (write(end, "!", 1) != 1) {
      _exit(1);
    }
  }

  pid_t process = 0;
};

/// Starts a child that lives on, and waits until it has got so far.
inline void StartChild(const char* program) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  if (fork() == 0) {
    if (program != nullptr) {
      execlp(program, program, "600", nullptr);
    }
    close(ends[1]);
    for (;;) {
      pause();
    }
  }
  close(ends[1]);
  char none = 0;
  EXPECT_EQ(read(ends[0], &none, 1), 0);
  close(ends[0]);
}
