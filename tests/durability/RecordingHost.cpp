// recording-host FOLDER NAME SECONDS [on|calm|ready]: records at full speed for that long, and writes to standard
// output a line "?RECORD" before each record that it saves, a line "!" once that is acknowledged, and at the end a line
// "=LONGEST USED": the seconds that its longest call took, and those of processor time that all took after the first
// record, which prepares what the others use. With "on" it goes on after an error, for which it writes "-ERROR": with
// the same record, or if the store lacks what was recorded before it, with another session. With "calm" it also pauses
// after each record. With "ready" it stops itself before it begins, until it is continued.

#include "Recording.h"

#include <TSAL/Error.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

namespace {

void Tell(const std::string& line) {
  if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::abort();  // shorter than PIPE_BUF, so the pipe takes it whole
  }
}

// What ends by itself or with a promoted standby.
bool MayPass(const std::string& error) {
  const auto says = [&error](const char* words) { return error.find(words) != std::string::npos; };
  return says("cannot be reached") || says("was lost") || says("stored or not") || says("only reads") ||
         says("timeout");
}

Recording Begin(const char* folder, const std::string& name) {
  return {folder, name, [](const std::string& record) { Tell("?" + record + "\n"); },
          [](const std::string& /*record*/) { Tell("!\n"); }};
}

}  // namespace

int main(int count, char** arguments) {
  using Clock = std::chrono::steady_clock;
  const std::string_view mode = count > 4 ? arguments[4] : "";
  if (mode == "ready") {
    std::raise(SIGSTOP);
  }
  const Clock::time_point end = Clock::now() + std::chrono::seconds(std::atoi(arguments[3]));
  try {
    std::optional<Recording> recording(Begin(arguments[1], arguments[2]));
    int sessions = 1;
    const bool isCalm = mode == "calm";
    const bool goesOn = isCalm || mode == "on";
    Clock::duration longest{};
    std::optional<std::clock_t> used;
    for (Clock::time_point start = Clock::now(); start < end;) {
      try {
        recording->Next();
        if (!used) {
          used = std::clock();
        }
      } catch (const Quor::TolvaServices::TsError& error) {
        if (!goesOn) {
          throw;
        }
        Tell("-" + std::string(error.what()) + "\n");
        if (!MayPass(error.what())) {
          recording.emplace(Begin(arguments[1], arguments[2] + ("." + std::to_string(++sessions))));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
      if (isCalm) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
      const Clock::time_point now = Clock::now();
      longest = std::max(longest, now - std::exchange(start, now));
    }
    Tell("=" + std::to_string(std::chrono::duration<double>(longest).count()) + " " +
         std::to_string(static_cast<double>(std::clock() - used.value_or(std::clock())) / CLOCKS_PER_SEC) + "\n");
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "host " << arguments[2] << ": " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
