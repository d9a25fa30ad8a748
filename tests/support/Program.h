#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

/// A program that runs until it is killed, or until this one ends, and what it says.
class Program {
 public:
  Program(const std::string& command, const std::filesystem::path& said) {
    process = fork();
    if (process == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      const int file = open(said.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
      dup2(file, STDOUT_FILENO);
      dup2(file, STDERR_FILENO);
      execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
      _exit(127);
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() { Kill(); }

  void Signal(int signal) const { kill(process, signal); }
  /// Waits until it has ended by itself. @return its exit code; -1 if a signal ended it.
  int ExitCode() {
    int status = 0;
    waitpid(std::exchange(process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// @return whether that ended it, and not something before.
  bool Kill() {
    int status = 0;
    if (process > 0) {
      kill(process, SIGKILL);
      waitpid(std::exchange(process, -1), &status, 0);
    }
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }

 private:
  pid_t process = -1;
};
