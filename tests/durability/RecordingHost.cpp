// recording-host FOLDER NAME SECONDS: records at full speed for that long, and writes to standard output a line
// "?RECORD" before each record that it saves and a line "!" once that is acknowledged.

#include "Recording.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>

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
    while (Clock::now() < end) {
      recording.Next();
    }
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "host " << arguments[2] << ": " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
