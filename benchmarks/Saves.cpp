// A host that saves events for some time, for scripts that measure what else runs beside it.
//   saves DATABASE SECONDS PAUSE: DATABASE has the attributes that name it in TSAL.config. The host waits PAUSE
//   milliseconds after each save. Prints the events in a second, and the median, 99th percentile and longest save in
//   milliseconds.

#include "RecordingHost.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

void Save(const RecordingHost& host, std::chrono::seconds seconds, std::chrono::milliseconds pause) {
  host.SaveEvent();  // the first one prepares statements
  std::vector<double> taken;
  const Clock::time_point begin = Clock::now();
  while (Clock::now() < begin + seconds) {
    const Clock::time_point before = Clock::now();
    host.SaveEvent();
    taken.push_back(Milliseconds(Clock::now() - before).count());
    std::this_thread::sleep_for(pause);
  }
  const double rate = static_cast<double>(taken.size()) * 1000 / Milliseconds(Clock::now() - begin).count();
  std::sort(taken.begin(), taken.end());
  std::cout << rate << ' ' << taken[taken.size() / 2] << ' ' << taken[taken.size() * 99 / 100] << ' ' << taken.back()
            << '\n';
}

}  // namespace

int main(int count, char** arguments) try {
  if (count != 4) {
    std::cerr << "expected DATABASE SECONDS PAUSE\n";
    return EXIT_FAILURE;
  }
  setenv("VELORA_LOG_FILE", "/dev/null", 1);
  Save(RecordingHost(arguments[1]), std::chrono::seconds(std::stoi(arguments[2])),
       std::chrono::milliseconds(std::stoi(arguments[3])));
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return EXIT_FAILURE;
}
