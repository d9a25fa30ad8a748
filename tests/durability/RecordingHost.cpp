// recording-host FOLDER NAME SECONDS: records at full speed for that long, and writes to standard output a line
// "?RECORD" before each record that it saves, a line "!" once that is acknowledged, and at the end a line
// "=LONGEST USED": the seconds that its longest call took, and those of processor time that all took.

#include "Recording.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <utility>

namespace {

void Tell(const std::string& line) {
  if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::abort();  // shorter than PIPE_BUF, so the pipe takes it whole
  }
}

}  // namespace

int main(int /*count*/, char** arguments) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + std::chrono::seconds(std::atoi(arguments[3]));
  try {
    Recording recording(
        arguments[1], arguments[2], [](const std::string& record) { Tell("?" + record + "\n"); },
        [](const std::string& /*record*/) { Tell("!\n"); });
    Clock::duration longest{};
    const std::clock_t used = std::clock();
    for (Clock::time_point start = Clock::now(); start < end;) {
      recording.Next();
      const Clock::time_point now = Clock::now();
      longest = std::max(longest, now - std::exchange(start, now));
    }
    Tell("=" + std::to_string(std::chrono::duration<double>(longest).count()) + " " +
         std::to_string(static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC) + "\n");
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "host " << arguments[2] << ": " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
