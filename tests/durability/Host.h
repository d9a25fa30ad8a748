#pragma once

#include "Comparison.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

/// A recording-host in a process of its own, and what it tells through a pipe.
class Host {
 public:
  /// @param mode "on" for one that goes on after errors, "calm" for one that pauses too, "ready" for one that waits for
  /// Begin(); null for one that ends.
  Host(const std::filesystem::path& folder, const std::string& name, int seconds, const char* mode = nullptr) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0 || (process = fork()) < 0) {
      std::abort();
    }
    if (process == 0) {
      dup2(ends[1], STDOUT_FILENO);
      execl(RECORDING_HOST, RECORDING_HOST, folder.c_str(), name.c_str(), std::to_string(seconds).c_str(), mode,
            nullptr);
      _exit(127);
    }
    std::ifstream output("/dev/fd/" + std::to_string(ends[0]));
    close(ends[0]);
    close(ends[1]);
    listener = std::thread([this, heard = std::move(output)]() mutable { Listen(heard); });
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { Kill(); }

  std::size_t Acknowledged() const { return acknowledged; }
  /// In seconds: its longest call, and what all its calls took of the processor; after its end.
  double LongestCall() const { return longestCall; }
  double ProcessorTime() const { return processorTime; }

  /// Ends the host with SIGKILL. @return whether that ended it, and not something before.
  bool Kill() {
    if (process > 0) {
      kill(process, SIGKILL);
    }
    const int status = End();
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }
  /// Waits for its end. @return whether it came without an error.
  bool Finish() { return End() == 0; }

  /// Waits until a "ready" one waits.
  void AwaitReady() const {
    int status = 0;
    waitpid(process, &status, WUNTRACED);
  }
  void Begin() const { Signal(SIGCONT); }

  void Signal(int signal) const { kill(process, signal); }

  Told told;       ///< complete after its end
  Records errors;  ///< of one that went on

 private:
  void Listen(std::ifstream& heard) {
    std::string announced;
    for (std::string line; std::getline(heard, line) && !heard.eof();) {  // the last line may be cut off
      if (line[0] == '?') {
        announced = line.substr(1);
        told.announced.insert(announced);
      } else if (line[0] == '=') {
        std::istringstream(line.substr(1)) >> longestCall >> processorTime;
      } else if (line[0] == '-') {
        errors.insert(line.substr(1));
      } else {
        told.acknowledged.insert(announced);
        ++acknowledged;
      }
    }
  }

  int End() {
    int status = 0;
    if (listener.joinable()) {
      listener.join();
      waitpid(std::exchange(process, -1), &status, 0);
    }
    return status;
  }

  pid_t process = -1;
  std::thread listener;
  std::atomic<std::size_t> acknowledged = 0;
  double longestCall = 0;
  double processorTime = 0;
};
